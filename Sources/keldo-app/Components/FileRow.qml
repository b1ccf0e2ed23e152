import QtQuick
import QtQuick.Layouts

// A file or a folder on a ground of its own, with what can be done with it at the trailing edge.
Rectangle {
    id: row

    required property string title
    property string detail: ""
    property string symbol: "film"
    default property alias content: status.data

    implicitWidth: status.implicitWidth + Theme.regular + Theme.small
    implicitHeight: Math.max(Theme.fileRowHeight, status.implicitHeight + 2 * Theme.tiny)
    Layout.fillWidth: true
    radius: Theme.small
    color: Theme.fieldBackground

    StatusRow {
        id: status
        objectName: row.objectName
        anchors { fill: parent; leftMargin: Theme.regular; rightMargin: Theme.small }
        title: row.title
        titleFont: row.detail === "" ? Theme.body : Theme.emphasis
        path: row.detail
        symbol: row.symbol
        color: Theme.secondary
        symbolSize: Theme.iconSize + 2
        spacing: Theme.medium
        clip: false
    }
}
