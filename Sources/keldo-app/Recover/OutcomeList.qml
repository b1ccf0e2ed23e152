pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components

// What became of each clip, and the file that came of it.
BoundedList {
    id: list

    bound: Theme.longListHeight
    spacing: Theme.medium
    delegate: StatusRow {
        required property int index
        required property bool succeeded
        required property string name
        required property string method
        required property string output
        required detail
        objectName: list.objectName + "." + index
        width: list.rowWidth
        title: name + " [" + method + "]"
        path: output === "" ? "" : "→ " + output
        symbol: succeeded ? "checkmark.circle.fill" : "xmark.circle.fill"
        color: succeeded ? Theme.proved : Theme.danger
    }
}
