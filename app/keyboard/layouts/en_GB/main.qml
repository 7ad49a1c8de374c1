// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.VirtualKeyboard
import QtQuick.VirtualKeyboard.Components

// Letters and digits on one page: the codes of a shop's items hold both. Every row is 115 units wide; the keyboard's
// own page sizes its wide keys by the place of another one, which leaves some of them without any width.
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
        Key { key: Qt.Key_Q; text: "q" }
        Key { key: Qt.Key_W; text: "w" }
        Key { key: Qt.Key_E; text: "e"; alternativeKeys: "èéêëę" }
        Key { key: Qt.Key_R; text: "r" }
        Key { key: Qt.Key_T; text: "t" }
        Key { key: Qt.Key_Y; text: "y"; alternativeKeys: "ýÿ" }
        Key { key: Qt.Key_U; text: "u"; alternativeKeys: "ùúûü" }
        Key { key: Qt.Key_I; text: "i"; alternativeKeys: "ìíîï" }
        Key { key: Qt.Key_O; text: "o"; alternativeKeys: "òóôõöøœ" }
        Key { key: Qt.Key_P; text: "p" }
        Key { key: Qt.Key_Minus; text: "-"; weight: 15 }
    }
    KeyboardRow {
        FillerKey { weight: 5 }
        Key { key: Qt.Key_A; text: "a"; alternativeKeys: "àáâãäåæ" }
        Key { key: Qt.Key_S; text: "s"; alternativeKeys: "ßśš" }
        Key { key: Qt.Key_D; text: "d" }
        Key { key: Qt.Key_F; text: "f" }
        Key { key: Qt.Key_G; text: "g" }
        Key { key: Qt.Key_H; text: "h" }
        Key { key: Qt.Key_J; text: "j" }
        Key { key: Qt.Key_K; text: "k" }
        Key { key: Qt.Key_L; text: "l"; alternativeKeys: "ł" }
        EnterKey { weight: 20 }
    }
    KeyboardRow {
        ShiftKey { weight: 15 }
        Key { key: Qt.Key_Z; text: "z"; alternativeKeys: "źżž" }
        Key { key: Qt.Key_X; text: "x" }
        Key { key: Qt.Key_C; text: "c"; alternativeKeys: "çćč" }
        Key { key: Qt.Key_V; text: "v" }
        Key { key: Qt.Key_B; text: "b" }
        Key { key: Qt.Key_N; text: "n"; alternativeKeys: "ñń" }
        Key { key: Qt.Key_M; text: "m" }
        Key { key: Qt.Key_Comma; text: "," }
        Key { key: Qt.Key_Period; text: "." }
        Key { key: Qt.Key_At; text: "@" }
    }
    KeyboardRow {
        SymbolModeKey { weight: 20; displayText: "?!&" }
        SpaceKey { weight: 75 }
        HideKeyboardKey { weight: 20 }
    }
}
