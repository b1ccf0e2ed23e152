pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components

// What became of each clip.
BoundedList {
    id: list

    bound: Theme.longListHeight
    delegate: StatusRow {
        required property int index
        required property bool succeeded
        required property string name
        required property string method
        required detail
        objectName: list.objectName + "." + index
        width: list.rowWidth
        title: name + " [" + method + "]"
        symbol: succeeded ? "checkmark.circle.fill" : "xmark.circle.fill"
        color: succeeded ? Theme.proved : Theme.danger
    }
}
