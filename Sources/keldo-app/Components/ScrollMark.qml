import QtQuick
import QtQuick.Controls.Basic

// How much of a scrolled thing shows, and where.
ScrollBar {
    id: mark

    policy: size < 1 ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    padding: 2
    minimumSize: 0.05
    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: mark.pressed ? Theme.primary : Theme.secondary
        opacity: mark.pressed || mark.hovered ? 1 : Theme.faded
    }
}
