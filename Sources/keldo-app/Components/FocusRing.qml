import QtQuick

// The ring around what the keyboard would press.
Rectangle {
    readonly property Rectangle ground: parent as Rectangle

    anchors.fill: parent
    anchors.margins: -Theme.ringGap
    radius: (ground ? ground.radius : Theme.smallRadius) + Theme.ringGap
    color: "transparent"
    border.width: Theme.ringWidth
    border.color: Theme.accent
}
