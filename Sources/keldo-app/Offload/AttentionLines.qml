pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components

// What is to be known beside a verdict or an error, a sentence a line. They can be copied.
Column {
    id: list

    required property list<string> lines

    width: parent ? parent.width : 0
    spacing: Theme.small
    visible: lines.length > 0

    Repeater {
        model: list.lines

        Item {
            id: line

            required property int index
            required property string modelData

            objectName: list.objectName + "." + index
            width: list.width
            height: Math.max(sign.height, sentence.implicitHeight)

            Symbol {
                id: sign
                name: "exclamationmark.triangle.fill"
                color: Theme.attention
            }
            SelectableText {
                id: sentence
                anchors { left: sign.right; leftMargin: Theme.small; right: parent.right }
                text: line.modelData
                color: Theme.attention
                font: Theme.print
            }
        }
    }
}
