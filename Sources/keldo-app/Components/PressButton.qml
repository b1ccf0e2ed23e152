import QtQuick
import QtQuick.Controls.Basic

// What all that can be pressed has in common: the mouse and Space press it, and so do assistive
// tools; where the focus ring is, so does Return, before the default action of the screen. It stands
// on Control, since the toolkit's own buttons let no one else say what they are to assistive tools.
Control {
    id: button

    property string text: ""
    property string details: ""
    property int spokenRole: Accessible.Button
    property bool takesReturn: true
    property bool autoRepeat: false
    readonly property bool down: area.pressed && area.containsMouse

    signal clicked

    function press() {
        if (enabled)
            clicked();
    }
    function pressedBy(event) {
        event.accepted = true;
        if (!event.isAutoRepeat)
            press();
    }
    function returned(event) {
        event.accepted = visualFocus && takesReturn;
        if (event.accepted)
            pressedBy(event);
    }

    focusPolicy: Qt.StrongFocus
    // Also where the desktop has such effects turned off: hints stand on it.
    hoverEnabled: true
    Accessible.role: spokenRole
    // Control takes the role away when a tool begins to listen.
    Accessible.onRoleChanged: if (Accessible.role !== spokenRole)
        Accessible.role = spokenRole
    Accessible.name: text
    Accessible.description: enabled ? details : "not available"
    Accessible.onPressAction: press()
    Keys.onShortcutOverride: event => event.accepted = visualFocus && takesReturn
                                      && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
    Keys.onReturnPressed: event => returned(event)
    Keys.onEnterPressed: event => returned(event)
    Keys.onSpacePressed: event => pressedBy(event)

    MouseArea {
        id: area
        anchors.fill: parent
        onPressed: if (button.focusPolicy & Qt.ClickFocus)
            button.forceActiveFocus(Qt.MouseFocusReason)
        onClicked: button.press()
        onPressAndHold: repeat.running = button.autoRepeat
        onReleased: repeat.stop()
        onCanceled: repeat.stop()
    }
    Timer {
        id: repeat
        interval: Theme.repeatInterval
        repeat: true
        onTriggered: button.press()
    }
}
