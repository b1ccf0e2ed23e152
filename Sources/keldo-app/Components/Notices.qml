pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts

// What is to be known beside something, a sentence a line.
ColumnLayout {
    id: notices

    required property var lines

    spacing: Theme.small
    visible: lines.length > 0

    Repeater {
        model: notices.lines
        Notice {
            required property int index
            required property string modelData
            objectName: notices.objectName + "." + index
            text: modelData
        }
    }
}
