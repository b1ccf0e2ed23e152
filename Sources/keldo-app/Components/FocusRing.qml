import QtQuick

// The ring around what the keyboard would press.
Rectangle {
    anchors.fill: parent
    anchors.margins: -3
    radius: parent.radius + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
}
