// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.VirtualKeyboard.Styles

// One key: a caption on a plate that lights up while it is pressed. The same in a light and in a dark palette: captions
// have a contrast of 4.6 or more, those that are switched off 4.2.
KeyPanel {
    id: key

    property string caption: control ? control.displayText : ""
    property bool small: caption.length > 1
    property bool lit: false

    Rectangle {
        anchors.fill: key
        anchors.margins: 3
        radius: 8
        color: !control || !control.enabled ? "#2b3536"
             : control.pressed || key.lit ? "#0e8373"
             : control.highlighted || control.functionKey ? "#25484a" : "#3b494b"

        Text {
            anchors.fill: parent
            anchors.margins: 2
            text: key.caption
            color: control && control.enabled ? "#ffffff" : "#8a9899"
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            fontSizeMode: Text.Fit
            minimumPixelSize: 10
            font.pixelSize: Math.round(parent.height * (key.small ? 0.34 : 0.46))
            font.capitalization: !key.small && control && control.uppercased ? Font.AllUppercase : Font.MixedCase
        }
    }
}
