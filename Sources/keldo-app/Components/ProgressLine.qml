import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// How much of 1 is done.
ProgressBar {
    id: bar

    required property string name

    implicitWidth: Theme.choiceWidth
    implicitHeight: Theme.small
    Layout.fillWidth: true
    Accessible.role: Accessible.ProgressBar
    Accessible.name: name
    Accessible.description: Math.floor(value * 100) + "%"

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
