import QtQuick

// The ring around what the keyboard would press.
Rectangle {
    anchors.fill: parent
    anchors.margins: -Theme.ringGap
    radius: parent.radius + Theme.ringGap
    color: "transparent"
    border.width: Theme.ringWidth
    border.color: Theme.accent
}
