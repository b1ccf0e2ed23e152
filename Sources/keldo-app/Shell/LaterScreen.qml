pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components

// Stands for a mode that does not exist yet.
Item {
    id: screen

    required property string label

    PlainText {
        objectName: "later"
        anchors.centerIn: parent
        text: screen.label + " is not in this version yet."
        color: Theme.secondary
        font: Theme.headline
    }
}
