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

    signal emptied

    // The rows are made anew; the keyboard goes on where it was.
    function remove(row, byKeyboard) {
        model.removeDestination(row);
        if (!byKeyboard)
            return;
        if (rows.count === 0)
            emptied();
        else
            rows.itemAt(Math.min(row, rows.count - 1)).focusRemove();
    }

    PlainText {
        objectName: "offload.nodrives"
        visible: list.model.destinations.count === 0
        text: "Add at least two drives for a safe, format-eligible offload."
        color: Theme.secondary
    }
    Repeater {
        id: rows
        model: list.model.destinations

        Rectangle {
            id: row

            required property int index
            required property string name
            required property string path

            function focusRemove() {
                remove.forceActiveFocus(Qt.TabFocusReason);
            }

            objectName: "offload.row." + index
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
                PlainText {
                    objectName: "offload.drive." + row.index
                    width: parent.width
                    text: row.name
                    font: Theme.emphasis
                    elide: Text.ElideMiddle
                }
                PlainText {
                    objectName: "offload.path." + row.index
                    width: parent.width
                    text: row.path
                    color: Theme.secondary
                    font: Theme.print
                    elide: Text.ElideMiddle
                }
            }
            IconButton {
                id: remove
                objectName: "offload.remove." + row.index
                anchors { right: parent.right; rightMargin: Theme.small - 4; verticalCenter: parent.verticalCenter }
                symbol: "minus.circle.fill"
                label: "Remove " + row.name
                color: Theme.danger
                onClicked: list.remove(row.index, visualFocus)
            }
        }
    }
}
