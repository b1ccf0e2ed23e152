import QtQuick
import QtQuick.Layouts

// A command or a listing that can be copied, with its own line breaks.
Rectangle {
    id: block

    required property string text

    implicitWidth: code.implicitWidth + 2 * Theme.small
    implicitHeight: code.implicitHeight + 2 * Theme.small
    radius: Theme.smallRadius
    color: Theme.fieldBackground
    Layout.fillWidth: true

    SelectableText {
        id: code
        anchors { fill: parent; margins: Theme.small }
        text: block.text
        font: Theme.code
    }
}
