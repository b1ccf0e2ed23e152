import QtQuick

// What all that can be pressed has in common: the mouse and Space press it, and so do assistive
// tools; where the focus ring is, so does Return, before the default action of the screen. The
// toolkit's own buttons let nobody else say what they are to assistive tools.
Item {
    id: button

    property string text: ""
    property string details: ""
    property int spokenRole: Accessible.Button
    property bool takesReturn: true
    property bool takesFocus: true
    property bool autoRepeat: false
    property Item contentItem: null
    property Item background: null
    property real horizontalPadding: 0
    property bool isFocusOfMouse: false
    readonly property bool visualFocus: activeFocus && !isFocusOfMouse
    readonly property bool hovered: hover.hovered
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

    implicitWidth: (contentItem ? contentItem.implicitWidth : 0) + 2 * horizontalPadding
    implicitHeight: contentItem ? contentItem.implicitHeight : 0
    activeFocusOnTab: takesFocus
    onFocusChanged: if (!focus)
        isFocusOfMouse = false
    onBackgroundChanged: {
        background.parent = button;
        background.anchors.fill = button;
        background.z = -1;
    }
    onContentItemChanged: {
        contentItem.parent = button;
        contentItem.anchors.fill = button;
        contentItem.anchors.leftMargin = Qt.binding(() => button.horizontalPadding);
        contentItem.anchors.rightMargin = Qt.binding(() => button.horizontalPadding);
    }
    Accessible.role: spokenRole
    Accessible.name: text
    Accessible.description: enabled ? details : "not available"
    Accessible.onPressAction: press()
    Keys.onShortcutOverride: event => event.accepted = visualFocus && takesReturn
                                      && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
    Keys.onReturnPressed: event => returned(event)
    Keys.onEnterPressed: event => returned(event)
    Keys.onSpacePressed: event => pressedBy(event)

    HoverHandler {
        id: hover
    }
    MouseArea {
        id: area
        anchors.fill: parent
        onPressed: {
            if (!button.takesFocus)
                return;
            button.isFocusOfMouse = true;
            button.forceActiveFocus(Qt.MouseFocusReason);
        }
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
