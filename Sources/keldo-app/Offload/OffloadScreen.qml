import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window
import Keldo.Components
import Keldo.Offload
import Keldo.Support

// Choose a card, add drives, start, watch, read the verdict.
FocusScope {
    id: screen

    required property Desktop desktop

    OffloadViewModel {
        id: offload
        objectName: "offload"
        desktop: screen.desktop
    }

    Flickable {
        id: scroll
        objectName: "offload.scroll"
        anchors.fill: parent
        contentWidth: width
        contentHeight: column.implicitHeight + 2 * Theme.huge
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar {
            policy: scroll.contentHeight > scroll.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        // What the keyboard has reached is brought into view.
        readonly property Item focused: Window.activeFocusItem
        onFocusedChanged: {
            if (!focused || !column.holds(focused))
                return;
            const top = focused.mapToItem(column, 0, 0).y;
            const lowest = top + column.y - Theme.huge;
            const highest = top + focused.height + column.y + Theme.huge - height;
            contentY = Math.max(Math.min(contentY, lowest), highest, 0);
        }

        Column {
            id: column
            x: (scroll.width - width) / 2
            y: Theme.huge
            width: Math.min(scroll.width - 2 * Theme.huge, Theme.contentWidth)
            spacing: Theme.wide

            function holds(item) {
                for (let at = item; at; at = at.parent)
                    if (at === column)
                        return true;
                return false;
            }

            ActionButton {
                objectName: "offload.new"
                anchors.right: parent.right
                visible: offload.stage === OffloadViewModel.Stage.finished
                text: "New Offload"
                symbol: "arrow.counterclockwise"
                enabled: !offload.isFormatting
                onClicked: offload.reset()
            }
            Loader {
                width: parent.width
                focus: true
                sourceComponent: offload.stage === OffloadViewModel.Stage.running ? running
                               : offload.stage === OffloadViewModel.Stage.finished ? finished
                               : setup
            }
        }
    }

    Component {
        id: setup
        SetupView {
            model: offload
        }
    }
    Component {
        id: running
        RunningView {
            model: offload
        }
    }
    Component {
        id: finished
        FinishedView {
            model: offload
            onFormatRequested: formatSheet.open()
        }
    }
    FormatSheet {
        id: formatSheet
        model: offload
    }
}
