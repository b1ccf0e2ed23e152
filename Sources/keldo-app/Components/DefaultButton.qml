import QtQuick

// The button of what a screen is for: it takes Return wherever the focus stands.
ActionButton {
    id: button

    role: ActionButton.Role.Prominent

    DefaultAction {
        enabled: button.enabled && button.visible
        onActivated: button.press()
    }
}
