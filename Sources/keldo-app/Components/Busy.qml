pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts

// Something goes on, and nobody knows how much of it is left.
RowLayout {
    id: busy

    required property string text

    spacing: Theme.small
    Accessible.role: Accessible.Animation
    Accessible.name: text

    Item {
        id: wheel

        property int turn: 0
        readonly property int spokes: 8

        implicitWidth: Theme.iconSize
        implicitHeight: Theme.iconSize

        Repeater {
            model: wheel.spokes

            Rectangle {
                required property int index
                readonly property real angle: 2 * Math.PI * index / wheel.spokes

                x: Theme.iconSize / 2 + Math.sin(angle) * (Theme.iconSize / 2 - 2) - 1.5
                y: Theme.iconSize / 2 - Math.cos(angle) * (Theme.iconSize / 2 - 2) - 1.5
                width: 3
                height: 3
                radius: 1.5
                color: Theme.secondary
                opacity: 1 - ((wheel.turn - index + wheel.spokes) % wheel.spokes) / wheel.spokes
            }
        }
        Timer {
            interval: 120
            repeat: true
            running: busy.visible
            onTriggered: wheel.turn = (wheel.turn + 1) % wheel.spokes
        }
    }
    NameText {
        name: busy.text
        color: Theme.secondary
        Accessible.ignored: true
    }
}
