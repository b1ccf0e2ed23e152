import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A list as high as its rows, up to `bound`; then it scrolls by itself. Rows are made only as they
// come into view.
ListView {
    id: list

    required property string name
    property int bound: Theme.listHeight

    implicitWidth: Theme.choiceWidth
    implicitHeight: Math.min(contentHeight, bound)
    Layout.fillWidth: true
    visible: count > 0
    clip: true
    interactive: false
    // Rows that are made ahead are made little by little, and the list may be emptied meanwhile.
    cacheBuffer: 0
    keyNavigationEnabled: false
    spacing: Theme.tiny
    // The scroll mark has its place in the margin whether it shows or not: rows that wrap would else
    // decide on their own width.
    readonly property real rowWidth: width - Theme.regular
    Layout.rightMargin: -Theme.regular
    activeFocusOnTab: contentHeight > height
    ScrollBar.vertical: ScrollMark {}
    Accessible.role: Accessible.List
    Accessible.name: name
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Up || event.key === Qt.Key_Down)
            event.accepted = scrolling.by(event.key === Qt.Key_Up ? -Theme.rowStep : Theme.rowStep);
        else
            event.accepted = event.key !== Qt.Key_Space && scrolling.key(event);
    }

    Scrolling {
        id: scrolling
        view: list
    }
    FocusRing {
        parent: list
        visible: list.activeFocus
        radius: Theme.smallRadius
        anchors.margins: 0
    }
}
