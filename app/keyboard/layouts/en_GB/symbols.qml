// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.VirtualKeyboard
import QtQuick.VirtualKeyboard.Components

KeyboardLayout {
    inputMode: InputEngine.InputMode.Latin
    keyWeight: 10
    sharedLayouts: ["main", "symbols"]

    // What is typed is entered as it is: a code or a name of a shop is no word of a dictionary.
    function createInputMethod() {
        return Qt.createQmlObject("import QtQuick.VirtualKeyboard; PlainInputMethod {}", parent)
    }

    KeyboardRow {
        Key { key: Qt.Key_1; text: "1" }
        Key { key: Qt.Key_2; text: "2" }
        Key { key: Qt.Key_3; text: "3" }
        Key { key: Qt.Key_4; text: "4" }
        Key { key: Qt.Key_5; text: "5" }
        Key { key: Qt.Key_6; text: "6" }
        Key { key: Qt.Key_7; text: "7" }
        Key { key: Qt.Key_8; text: "8" }
        Key { key: Qt.Key_9; text: "9" }
        Key { key: Qt.Key_0; text: "0" }
        BackspaceKey { weight: 15 }
    }
    KeyboardRow {
        Key { key: Qt.Key_Plus; text: "+" }
        Key { key: Qt.Key_Minus; text: "-" }
        Key { key: Qt.Key_Asterisk; text: "*" }
        Key { key: Qt.Key_Slash; text: "/" }
        Key { key: Qt.Key_Equal; text: "=" }
        Key { key: Qt.Key_Percent; text: "%" }
        Key { key: Qt.Key_Ampersand; text: "&" }
        Key { key: Qt.Key_NumberSign; text: "#" }
        Key { key: Qt.Key_At; text: "@" }
        Key { key: Qt.Key_Underscore; text: "_" }
        Key { text: "€"; weight: 15 }
    }
    KeyboardRow {
        FillerKey { weight: 5 }
        Key { key: Qt.Key_ParenLeft; text: "(" }
        Key { key: Qt.Key_ParenRight; text: ")" }
        Key { key: Qt.Key_BracketLeft; text: "[" }
        Key { key: Qt.Key_BracketRight; text: "]" }
        Key { key: Qt.Key_Less; text: "<" }
        Key { key: Qt.Key_Greater; text: ">" }
        Key { key: Qt.Key_QuoteDbl; text: "\"" }
        Key { key: Qt.Key_Apostrophe; text: "'" }
        Key { key: Qt.Key_Dollar; text: "$" }
        EnterKey { weight: 20 }
    }
    KeyboardRow {
        Key { text: "£"; weight: 15 }
        Key { key: Qt.Key_Period; text: "." }
        Key { key: Qt.Key_Comma; text: "," }
        Key { key: Qt.Key_Colon; text: ":" }
        Key { key: Qt.Key_Semicolon; text: ";" }
        Key { key: Qt.Key_Exclam; text: "!" }
        Key { key: Qt.Key_Question; text: "?" }
        Key { key: Qt.Key_Backslash; text: "\\" }
        Key { key: Qt.Key_Bar; text: "|" }
        Key { key: Qt.Key_AsciiTilde; text: "~" }
        Key { key: Qt.Key_AsciiCircum; text: "^" }
    }
    KeyboardRow {
        SymbolModeKey { weight: 20; displayText: "ABC" }
        SpaceKey { weight: 75 }
        HideKeyboardKey { weight: 20 }
    }
}
