import QtQuick
import QtQuick.Window

// Moves what `view` shows: with the wheel, with keys that are passed to `key`, and after the focus.
// What cannot be used at an end is left to whoever comes next.
MouseArea {
    id: scrolling

    required property Flickable view
    readonly property Item focused: Window.activeFocusItem

    readonly property real lowest: view.originY
    readonly property real highest: Math.max(lowest, view.originY + view.contentHeight - view.height)

    // Whether it moved.
    function by(distance) {
        const before = view.contentY;
        view.contentY = Math.min(highest, Math.max(lowest, before + distance));
        return view.contentY !== before;
    }
    // Whether the key did something.
    function key(event) {
        const page = view.height - Theme.scrollStep;
        switch (event.key) {
        case Qt.Key_PageUp:
            return by(-page);
        case Qt.Key_PageDown:
            return by(page);
        case Qt.Key_Home:
            return by(lowest - view.contentY);
        case Qt.Key_End:
            return by(highest - view.contentY);
        case Qt.Key_Space:
            return !focused?.activeFocusOnTab && by(event.modifiers & Qt.ShiftModifier ? -page : page);
        default:
            return false;
        }
    }
    function holds(item) {
        for (let at = item; at; at = at.parent)
            if (at === view.contentItem)
                return true;
        return false;
    }

    parent: view
    anchors.fill: parent
    z: -1
    acceptedButtons: Qt.NoButton
    onWheel: wheel => wheel.accepted = by(-(wheel.pixelDelta.y || wheel.angleDelta.y / 120 * Theme.scrollStep))
    onFocusedChanged: {
        if (!focused || !holds(focused))
            return;
        const top = focused.mapToItem(view.contentItem, 0, 0).y;
        const bottom = top + focused.height;
        if (bottom + Theme.huge > view.contentY + view.height)
            by(bottom + Theme.huge - view.height - view.contentY);
        if (top - Theme.huge < view.contentY)
            by(top - Theme.huge - view.contentY);
    }
}
