import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
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

    header: Rectangle {
        implicitHeight: Theme.headerHeight
        color: Theme.windowBackground

        RowLayout {
            anchors { fill: parent; leftMargin: Theme.wide; rightMargin: Theme.wide }
            spacing: Theme.regular

            Symbol {
                objectName: "header.symbol"
                name: "externaldrive.fill.badge.checkmark"
                color: Theme.accent
                size: Theme.huge + 2
            }
            ColumnLayout {
                spacing: 0
                PlainText {
                    objectName: "header.title"
                    text: "keldobay"
                    font: Theme.title
                }
                PlainText {
                    objectName: "header.line"
                    text: "DIT Offload & Dailies"
                    color: Theme.secondary
                    font: Theme.print
                }
            }
            Item {
                Layout.fillWidth: true
            }
            SegmentedControl {
                objectName: "mode"
                name: "Mode"
                labels: view.modes
                currentIndex: view.mode
                Layout.preferredWidth: Theme.modeWidth
                onChosen: index => view.mode = index
            }
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

        readonly property string screen: AppModes.screen(view.modes[view.mode])
        onScreenChanged: setSource(screen, {desktop: view.desktop})
    }
}
