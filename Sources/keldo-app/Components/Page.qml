import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A column that scrolls, no wider than can be read, with an optional title and, at the trailing
// edge, `head`: what can be done with the whole page.
FocusScope {
    id: page

    default property alias content: body.data
    property alias head: headSlot.data
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
    implicitHeight: flickable.contentHeight
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
        target: scrolling.holds(scrolling.focused) ? scrolling.focused : null
        function onVisibleChanged() {
            if (!scrolling.focused.visible)
                rest.forceActiveFocus();
        }
    }
    Flickable {
        id: flickable
        objectName: page.objectName + ".scroll"
        anchors.fill: parent
        contentWidth: width
        contentHeight: outer.implicitHeight + 2 * Theme.huge
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
}
