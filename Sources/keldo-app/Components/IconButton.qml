import QtQuick

// A button that is only a symbol; `text` says what it does.
PressButton {
    id: button

    required property string symbol
    property color color: Theme.primary

    implicitWidth: Theme.buttonHeight
    implicitHeight: Theme.buttonHeight

    Hint {
        shown: button.hovered
        text: button.text
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: button.symbol
            color: button.enabled ? button.color : Theme.secondary
            size: Theme.iconSize + 2
            opacity: button.down || !button.enabled ? Theme.faded : 1
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
