import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T

// A panel over the window that must be answered first. Escape closes it.
Popup {
    id: sheet

    required property string title
    property string symbol: ""
    property color tint: Theme.primary
    default property alias content: column.data

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(Theme.sheetWidth, parent ? parent.width - 2 * Theme.huge : Theme.sheetWidth)
    padding: Theme.wide
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape

    ColumnLayout {
        id: column
        anchors.fill: parent
        spacing: Theme.large
        objectName: "sheet"
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title

        SymbolLabel {
            objectName: "sheet.heading"
            text: sheet.title
            symbol: sheet.symbol
            color: sheet.tint
            font: Theme.headline
            symbolSize: Theme.iconSize + 2
        }
    }
    T.Overlay.modal: Rectangle {
        color: Theme.shade
    }
    background: Rectangle {
        radius: Theme.cardRadius
        color: Theme.cardBackground
        border.width: Theme.hairline
        border.color: Theme.separator
    }
}
