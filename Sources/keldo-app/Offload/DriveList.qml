pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

// The backup drives in the order added, each with a button that removes it.
ColumnLayout {
    id: list

    required property OffloadViewModel model

    signal emptied

    // The keyboard goes on where the row was.
    function remove(row, byKeyboard) {
        model.removeDestination(row);
        if (!byKeyboard)
            return;
        if (rows.count === 0)
            emptied();
        else
            rows.itemAt(Math.min(row, rows.count - 1)).focusRemove();
    }

    spacing: Theme.medium

    Note {
        objectName: "offload.nodrives"
        visible: rows.count === 0
        text: "Add at least two drives for a safe, format-eligible offload."
        font: Theme.body
    }
    Repeater {
        id: rows
        model: list.model.destinations

        FileRow {
            id: row

            required property int index
            required property string name
            required property string path

            function focusRemove() {
                remove.forceActiveFocus(Qt.TabFocusReason);
            }

            objectName: "offload.drive." + index
            title: name
            detail: path
            symbol: "externaldrive.fill"

            IconButton {
                id: remove
                objectName: "offload.remove." + row.index
                symbol: "minus.circle.fill"
                text: "Remove " + row.title
                color: Theme.danger
                onClicked: list.remove(row.index, visualFocus)
            }
        }
    }
}
