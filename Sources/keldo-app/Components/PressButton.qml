import QtQuick
import QtQuick.Controls.Basic

// What all buttons have in common: assistive tools can press them, and where the focus ring is, so
// does Return, before the default action of the screen.
AbstractButton {
    id: button

    property bool takesReturn: true

    function press() {
        if (enabled)
            clicked();
    }
    function returned(event) {
        event.accepted = visualFocus && takesReturn;
        if (event.accepted && !event.isAutoRepeat)
            press();
    }

    // Also where the desktop has such effects turned off: hints stand on it.
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: button.press()
    Keys.onShortcutOverride: event => event.accepted = visualFocus && takesReturn
                                      && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
    Keys.onReturnPressed: event => returned(event)
    Keys.onEnterPressed: event => returned(event)
}
