import QtQuick
import QtQuick.Controls.Basic

// A button that is only a symbol; `label` says what it does.
AbstractButton {
    id: button

    required property string symbol
    required property string label
    property color color: Theme.primary

    implicitWidth: Theme.buttonHeight
    implicitHeight: Theme.buttonHeight
    // Also where the desktop has such effects turned off: the hint is all that says it in words.
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: label

    Hint {
        shown: button.hovered
        text: button.label
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: button.symbol
            color: button.color
            size: Theme.iconSize + 2
            opacity: button.down ? 0.6 : 1
        }
    }
    background: Rectangle {
        radius: width / 2
        color: "transparent"
        FocusRing {
            visible: button.visualFocus
        }
    }
}
