import QtQuick
import QtQuick.Controls.Basic

// A button. `role` says what pressing it means: an ordinary step, the one to take next
// ("prominent"), or a loss ("destructive").
Button {
    id: button

    property string symbol: ""
    property string role: "plain"

    readonly property bool isFilled: role !== "plain"
    readonly property color foreground: !enabled ? Theme.secondary : isFilled ? Theme.onProminent : Theme.primary
    readonly property color base: !enabled ? Theme.troughBackground
                                : role === "prominent" ? Theme.prominentBackground
                                : role === "destructive" ? Theme.dangerBackground
                                : Theme.buttonBackground
    readonly property color pressedBase: role === "prominent" ? Theme.prominentPressed
                                       : role === "destructive" ? Theme.dangerPressed
                                       : Theme.buttonPressed

    implicitHeight: isFilled ? Theme.prominentHeight : Theme.buttonHeight
    leftPadding: isFilled ? Theme.large : Theme.regular
    rightPadding: leftPadding
    topPadding: 0
    bottomPadding: 0
    Accessible.name: text

    contentItem: Row {
        spacing: Theme.small
        Symbol {
            name: button.symbol
            color: button.foreground
            visible: button.symbol !== ""
            anchors.verticalCenter: parent.verticalCenter
        }
        Text {
            text: button.text
            color: button.foreground
            font: button.isFilled ? Theme.strong : Theme.emphasis
            width: Math.ceil(implicitWidth)
            anchors.verticalCenter: parent.verticalCenter
        }
    }
    background: Rectangle {
        radius: Theme.buttonRadius
        color: button.down ? button.pressedBase : button.hovered && !button.isFilled ? Theme.fieldBackground : button.base
        border.width: button.isFilled ? 0 : Theme.hairline
        border.color: Theme.separator

        FocusRing {
            visible: button.visualFocus
        }
    }
}
