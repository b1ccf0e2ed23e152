pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components
import Keldo.Offload

// The backup drives in the order added, each with a button that removes it.
Column {
    id: list

    required property OffloadViewModel model

    width: parent ? parent.width : 0
    spacing: Theme.medium

    Text {
        objectName: "offload.nodrives"
        visible: list.model.destinations.length === 0
        text: "Add at least two drives for a safe, format-eligible offload."
        color: Theme.secondary
        font: Theme.body
    }
    Repeater {
        model: list.model.destinations

        Rectangle {
            id: row

            required property int index
            required property var modelData

            width: list.width
            height: Theme.rowHeight
            radius: Theme.small
            color: Theme.fieldBackground

            Symbol {
                id: drive
                anchors { left: parent.left; leftMargin: Theme.regular; verticalCenter: parent.verticalCenter }
                name: "externaldrive.fill"
                color: Theme.secondary
                size: Theme.iconSize + 2
            }
            Column {
                anchors { left: drive.right; right: remove.left; margins: Theme.medium; verticalCenter: parent.verticalCenter }
                Text {
                    objectName: "offload.drive." + row.index
                    width: parent.width
                    text: row.modelData.name
                    color: Theme.primary
                    font: Theme.emphasis
                    elide: Text.ElideMiddle
                    textFormat: Text.PlainText
                }
                Text {
                    width: parent.width
                    text: row.modelData.path
                    color: Theme.secondary
                    font: Theme.print
                    elide: Text.ElideMiddle
                    textFormat: Text.PlainText
                }
            }
            IconButton {
                id: remove
                objectName: "offload.remove." + row.index
                anchors { right: parent.right; rightMargin: Theme.small - 4; verticalCenter: parent.verticalCenter }
                symbol: "minus.circle.fill"
                label: "Remove " + row.modelData.name
                color: Theme.danger
                onClicked: list.model.removeDestination(row.index)
            }
        }
    }
}
