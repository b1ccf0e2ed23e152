import QtQuick
import QtQuick.Layouts

// A title that opens what stands below it.
ColumnLayout {
    id: disclosure

    required property string title
    property bool isOpen: false
    default property alias content: body.data

    spacing: Theme.small

    PressButton {
        id: button
        objectName: disclosure.objectName + ".button"
        text: disclosure.title
        implicitHeight: Theme.buttonHeight
        Layout.fillWidth: true
        Accessible.checkable: true
        Accessible.checked: disclosure.isOpen
        details: disclosure.isOpen ? "open" : "closed"
        onClicked: disclosure.isOpen = !disclosure.isOpen

        contentItem: SymbolLabel {
            text: disclosure.title
            symbol: disclosure.isOpen ? "chevron.down" : "chevron.right"
            symbolSize: Theme.regular
            font: Theme.emphasis
        }
        background: Rectangle {
            radius: Theme.smallRadius
            color: "transparent"
            FocusRing {
                visible: button.visualFocus
            }
        }
    }
    ColumnLayout {
        id: body
        visible: disclosure.isOpen
        spacing: Theme.small
    }
}
