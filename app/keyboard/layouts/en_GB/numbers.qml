// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.VirtualKeyboard
import QtQuick.VirtualKeyboard.Components

// For entries that take a number.
KeyboardLayout {
    inputMode: InputEngine.InputMode.Numeric
    keyWeight: 10

    function createInputMethod() {
        return Qt.createQmlObject("import QtQuick.VirtualKeyboard; PlainInputMethod {}", parent)
    }

    KeyboardRow {
        Key { key: Qt.Key_7; text: "7" }
        Key { key: Qt.Key_8; text: "8" }
        Key { key: Qt.Key_9; text: "9" }
        BackspaceKey { }
    }
    KeyboardRow {
        Key { key: Qt.Key_4; text: "4" }
        Key { key: Qt.Key_5; text: "5" }
        Key { key: Qt.Key_6; text: "6" }
        Key { key: Qt.Key_Minus; text: "-" }
    }
    KeyboardRow {
        Key { key: Qt.Key_1; text: "1" }
        Key { key: Qt.Key_2; text: "2" }
        Key { key: Qt.Key_3; text: "3" }
        EnterKey { }
    }
    KeyboardRow {
        Key { key: Qt.Key_Comma; text: "," }
        Key { key: Qt.Key_0; text: "0" }
        Key { key: Qt.Key_Period; text: "." }
        HideKeyboardKey { }
    }
}
