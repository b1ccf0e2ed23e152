import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A column that scrolls, no wider than can be read, with an optional title and, at the trailing
// edge, `head`: what can be done with the whole page. `foot` is what it leads to; it stands below
// the column and stays in view where that does not fit.
FocusScope {
    id: page

    default property alias content: body.data
    property alias head: headSlot.data
    property alias foot: footSlot.data
    readonly property bool hasFoot: footSlot.visibleChildren.length > 0
    property string title: ""
    property string systemImage: ""

    // Shows the page from its top and gives the focus to what has come, for assistive tools to read
    // out and Tab to go on from; not while the focus is outside the page.
    function attend(item) {
        flickable.contentY = 0;
        if (activeFocus)
            item.forceActiveFocus();
    }

    focus: true
    implicitWidth: outer.implicitWidth + 2 * Theme.huge
    implicitHeight: flickable.contentHeight + foot.height
    Layout.fillWidth: true
    Layout.fillHeight: true
    Keys.onPressed: event => event.accepted = scrolling.key(event)
    // From what Tab does not stop at, the toolkit would begin anew at the top of the window.
    Keys.onTabPressed: scrolling.focused.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onBacktabPressed: scrolling.focused.nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    // Where the focus is while it is on no control, and where it goes from one that is hidden.
    Item {
        id: rest
        objectName: page.objectName + ".rest"
        focus: true
    }
    Connections {
        target: page.activeFocus && scrolling.focused !== rest ? scrolling.focused : null
        function onVisibleChanged() {
            if (!scrolling.focused.visible)
                rest.forceActiveFocus();
        }
    }
    Flickable {
        id: flickable
        objectName: page.objectName + ".scroll"
        anchors { fill: parent; bottomMargin: foot.height }
        contentWidth: width
        contentHeight: outer.implicitHeight + Theme.huge + (page.hasFoot ? Theme.wide : Theme.huge)
        interactive: false
        clip: true
        ScrollBar.vertical: ScrollMark {}

        Scrolling {
            id: scrolling
            view: flickable
        }
        ColumnLayout {
            id: outer
            x: Math.round((flickable.width - width) / 2)
            y: Theme.huge
            width: Math.min(flickable.width - 2 * Theme.huge, Theme.contentWidth)
            spacing: 0

            RowLayout {
                Layout.bottomMargin: implicitHeight > 0 ? Theme.wide : 0
                SymbolLabel {
                    visible: page.title !== ""
                    objectName: page.objectName + ".title"
                    text: page.title
                    symbol: page.systemImage
                    font: Theme.title
                    symbolSize: Theme.wide
                }
                Item {
                    Layout.fillWidth: true
                }
                RowLayout {
                    id: headSlot
                    spacing: Theme.medium
                    Layout.fillWidth: false
                }
            }
            ColumnLayout {
                id: body
                spacing: Theme.wide
            }
        }
    }
    Item {
        id: foot
        objectName: page.objectName + ".foot"
        readonly property bool isHeld: flickable.contentHeight > flickable.height
        y: Math.min(flickable.contentHeight, page.height - height)
        width: page.width
        height: page.hasFoot ? footSlot.implicitHeight + Theme.huge : 0

        Rectangle {
            visible: foot.isHeld && page.hasFoot
            width: parent.width
            height: Theme.hairline
            color: Theme.separator
        }
        ColumnLayout {
            id: footSlot
            x: outer.x
            y: foot.isHeld ? Theme.regular : 0
            width: outer.width
        }
    }
}
