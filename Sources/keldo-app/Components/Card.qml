import QtQuick

// A titled section as wide as its container.
Rectangle {
    id: card

    required property string title
    required property string systemImage
    property color tint: Theme.accent
    default property alias content: body.data

    implicitWidth: parent ? parent.width : 0
    implicitHeight: column.implicitHeight + 2 * Theme.large
    color: Theme.cardBackground
    radius: Theme.cardRadius
    border.width: Theme.hairline
    border.color: Theme.separator
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    Column {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.large }
        spacing: Theme.medium

        SymbolLabel {
            objectName: card.objectName + ".head"
            text: card.title
            symbol: card.systemImage
            color: card.tint
            font: Theme.headline
            symbolSize: Theme.iconSize + 2
        }
        Column {
            id: body
            width: parent.width
            spacing: Theme.medium
        }
    }
}
