import QtQuick

// The button of what a screen is for: it takes Return wherever the focus stands, as long as it is
// what is to be done next.
ActionButton {
    id: button

    property bool isNext: true

    role: isNext ? ActionButton.Role.Prominent : ActionButton.Role.Plain

    DefaultAction {
        enabled: button.isNext && button.enabled && button.visible
        onActivated: button.press()
    }
}
