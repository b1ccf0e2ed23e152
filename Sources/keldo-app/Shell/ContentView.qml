import QtQuick
import QtQuick.Controls.Basic
import Keldo.Components
import Keldo.Shell
import Keldo.Support

// The window: a header with the mode switch, and the screen of the current mode. Only that screen
// exists; a switch drops the one before together with its view model.
ApplicationWindow {
    id: view

    required property Desktop desktop
    property var modes: AppModes.labels
    property int mode: AppModes.offload

    title: "keldobay"
    visible: true
    width: 980
    height: 720
    minimumWidth: 940
    minimumHeight: 680
    color: Theme.windowBackground
    palette.toolTipBase: Theme.cardBackground
    palette.toolTipText: Theme.primary
    palette.mid: Theme.secondary
    palette.dark: Theme.primary

    header: Rectangle {
        implicitHeight: Theme.headerHeight
        color: Theme.windowBackground

        Symbol {
            id: mark
            objectName: "header.symbol"
            anchors { left: parent.left; leftMargin: Theme.wide; verticalCenter: parent.verticalCenter }
            name: "externaldrive.fill.badge.checkmark"
            color: Theme.accent
            size: Theme.huge + 2
        }
        Column {
            anchors { left: mark.right; leftMargin: Theme.regular; verticalCenter: parent.verticalCenter }
            PlainText {
                objectName: "header.title"
                text: "keldobay"
                color: Theme.primary
                font: Theme.title
            }
            PlainText {
                objectName: "header.line"
                text: "DIT Offload & Dailies"
                color: Theme.secondary
                font: Theme.print
            }
        }
        SegmentedControl {
            objectName: "mode"
            name: "Mode"
            anchors { right: parent.right; rightMargin: Theme.wide; verticalCenter: parent.verticalCenter }
            width: Theme.modeWidth
            labels: view.modes
            currentIndex: view.mode
            onChosen: index => view.mode = index
        }
        Rectangle {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            height: Theme.hairline
            color: Theme.separator
        }
    }

    Loader {
        anchors.fill: parent
        focus: true

        readonly property url screen: AppModes.screen(view.modes[view.mode])
        onScreenChanged: setSource(screen, {desktop: view.desktop})
    }
    LaterScreen {
        anchors.fill: parent
        visible: AppModes.screen(label).toString() === ""
        label: view.modes[view.mode]
    }
}
