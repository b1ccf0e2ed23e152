import QtQuick
import QtQuick.Controls.Basic

// A path or a placeholder on one line, cut in the middle, with the whole in a tooltip.
Rectangle {
    id: field

    required property string text

    implicitWidth: parent ? parent.width : 0
    implicitHeight: Theme.fieldHeight
    color: Theme.fieldBackground
    radius: Theme.smallRadius
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Text {
        id: line
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: Theme.small }
        text: field.text
        color: Theme.primary
        font: Theme.code
        elide: Text.ElideMiddle
        maximumLineCount: 1
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
    HoverHandler {
        id: hover
    }
    ToolTip.visible: hover.hovered && line.truncated
    ToolTip.text: text
}
