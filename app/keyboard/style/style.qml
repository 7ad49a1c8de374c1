// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Window
import QtQuick.VirtualKeyboard
import QtQuick.VirtualKeyboard.Styles

// A keyboard that leaves the larger part of the screen to the till, also on a wide one. The captions of the wide keys
// are words, which every font has.
KeyboardStyle {
    id: style

    readonly property real largestShare: 0.42
    readonly property color popupColor: "#0b5f54"

    keyboardDesignWidth: 1000
    keyboardDesignHeight: Screen.width > 0 ? Math.min(330, largestShare * Screen.height / Screen.width * 1000) : 330
    keyboardRelativeLeftMargin: 0.003
    keyboardRelativeRightMargin: 0.003
    keyboardRelativeTopMargin: 0.01
    keyboardRelativeBottomMargin: 0.01

    keyboardBackground: Rectangle { color: "#1c2526" }

    keyPanel: TillKey { }
    backspaceKeyPanel: TillKey { caption: "Delete"; small: true }
    enterKeyPanel: TillKey { caption: "Enter"; small: true }
    hideKeyPanel: TillKey { caption: "Hide"; small: true }
    shiftKeyPanel: TillKey {
        caption: InputContext.capsLockActive ? "CAPS" : "Shift"
        small: true
        lit: InputContext.capsLockActive || InputContext.shiftActive
    }
    spaceKeyPanel: TillKey { caption: "Space"; small: true }
    symbolKeyPanel: TillKey { small: true }
    modeKeyPanel: TillKey { small: true }
    languageKeyPanel: TillKey { caption: "Language"; small: true }
    handwritingKeyPanel: TillKey { caption: ""; small: true }

    characterPreviewMargin: 0
    characterPreviewDelegate: Rectangle {
        property string text
        property string flickLeft
        property string flickTop
        property string flickRight
        property string flickBottom

        radius: 8
        color: style.popupColor
        Text {
            anchors.centerIn: parent
            text: parent.text
            color: "#ffffff"
            font.pixelSize: Math.round(parent.height * 0.5)
        }
    }

    // The further letters that a long press offers.
    alternateKeysListItemWidth: Math.round(52 * scaleHint)
    alternateKeysListItemHeight: Math.round(58 * scaleHint)
    alternateKeysListDelegate: Item {
        width: style.alternateKeysListItemWidth
        height: style.alternateKeysListItemHeight
        Text {
            anchors.centerIn: parent
            text: model.text
            color: "#ffffff"
            font.pixelSize: Math.round(parent.height * 0.5)
        }
    }
    alternateKeysListHighlight: Rectangle { radius: 8; color: "#0e8373" }
    alternateKeysListBackground: Rectangle { radius: 8; color: style.popupColor }

    // No words are suggested, so their list takes no room.
    selectionListHeight: 0
    selectionListDelegate: SelectionListItem { width: 0 }
    popupListDelegate: SelectionListItem { property real cursorAnchor: 0; width: 0 }
    languageListDelegate: SelectionListItem { width: 0 }
    navigationHighlight: Rectangle { color: "transparent"; border.color: "#ffd54a"; border.width: 4; radius: 8 }
}
