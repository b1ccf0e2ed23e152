import QtQuick
import QtQuick.Controls.Basic

// How much of 1 is done.
ProgressBar {
    id: bar

    implicitHeight: Theme.small
    Accessible.role: Accessible.ProgressBar

    background: Rectangle {
        radius: height / 2
        color: Theme.troughBackground
    }
    contentItem: Item {
        Rectangle {
            width: bar.visualPosition * parent.width
            height: parent.height
            radius: height / 2
            color: Theme.accent
        }
    }
}
