import QtQuick
import QtQuick.Controls.Basic

// A tooltip of plain text.
ToolTip {
    id: hint

    required property bool shown

    visible: shown
    delay: Theme.hintDelay
    contentItem: Text {
        objectName: "hint"
        text: hint.text
        color: Theme.primary
        font: Theme.print
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
    }
    background: Rectangle {
        radius: Theme.smallRadius
        color: Theme.cardBackground
        border.width: Theme.hairline
        border.color: Theme.separator
    }
}
