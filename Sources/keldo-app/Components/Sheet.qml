import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T

// A panel over the window that must be answered first. Escape closes it.
Popup {
    id: sheet

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(Theme.sheetWidth, parent ? parent.width - 2 * Theme.huge : Theme.sheetWidth)
    padding: Theme.wide
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape

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
