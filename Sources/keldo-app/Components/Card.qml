import QtQuick
import QtQuick.Layouts

// A titled section as wide as its container.
Rectangle {
    id: card

    required property string title
    property string systemImage: ""
    property color tint: Theme.accent
    default property alias content: column.data

    implicitWidth: column.implicitWidth + 2 * Theme.large
    implicitHeight: column.implicitHeight + 2 * Theme.large
    Layout.fillWidth: true
    color: Theme.cardBackground
    radius: Theme.cardRadius
    border.width: Theme.hairline
    border.color: Theme.separator
    Accessible.role: Accessible.Grouping
    Accessible.name: title
    Accessible.focusable: true

    ColumnLayout {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.large }
        spacing: Theme.medium

        SymbolLabel {
            objectName: card.objectName + ".head"
            visible: card.title !== ""
            text: card.title
            symbol: card.systemImage
            color: card.tint
            font: Theme.headline
            symbolSize: Theme.iconSize + 2
            Layout.bottomMargin: Theme.tiny
        }
    }
}
