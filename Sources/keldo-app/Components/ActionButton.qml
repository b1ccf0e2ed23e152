import QtQuick

// A button. `role` says what pressing it means: an ordinary step, the one to take next, or a loss.
PressButton {
    id: button

    enum Role { Plain, Prominent, Destructive }

    property int role: ActionButton.Role.Plain
    property string symbol: ""
    property string trailingSymbol: ""

    readonly property bool isFilled: role !== ActionButton.Role.Plain
    readonly property color foreground: !enabled ? Theme.secondary : isFilled ? Theme.onProminent : Theme.primary
    readonly property color base: !enabled ? Theme.troughBackground
                                : role === ActionButton.Role.Prominent ? Theme.prominentBackground
                                : role === ActionButton.Role.Destructive ? Theme.dangerBackground
                                : hovered ? Theme.fieldBackground : Theme.buttonBackground
    readonly property color pressedBase: role === ActionButton.Role.Prominent ? Theme.prominentPressed
                                       : role === ActionButton.Role.Destructive ? Theme.dangerPressed
                                       : Theme.buttonPressed

    implicitHeight: isFilled ? Theme.prominentHeight : Theme.buttonHeight
    horizontalPadding: isFilled ? Theme.large : Theme.regular

    contentItem: SymbolLabel {
        text: button.text
        symbol: button.symbol
        trailingSymbol: button.trailingSymbol
        isCentred: true
        color: button.foreground
        font: button.isFilled ? Theme.strong : Theme.emphasis
    }
    background: Rectangle {
        radius: Theme.buttonRadius
        color: button.down ? button.pressedBase : button.base
        border.width: button.isFilled ? 0 : Theme.hairline
        border.color: Theme.separator

        FocusRing {
            visible: button.visualFocus
        }
    }
}
