pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts

// What is to be known beside something, a sentence a line.
Column {
    id: notices

    required property var lines

    spacing: Theme.small
    visible: lines.length > 0
    Layout.fillWidth: true

    Repeater {
        model: notices.lines
        Notice {
            required property int index
            required property string modelData
            objectName: notices.objectName + "." + index
            width: notices.width || implicitWidth
            text: modelData
        }
    }
}
