import QtQuick
import QtQuick.Controls.Basic

// One line of text to be typed.
TextField {
    id: field

    implicitHeight: Theme.fieldHeight
    leftPadding: Theme.small
    rightPadding: Theme.small
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter
    color: Theme.primary
    placeholderTextColor: Theme.secondary
    selectionColor: Theme.prominentBackground
    selectedTextColor: Theme.onProminent
    selectByMouse: true
    font: Theme.body

    background: Rectangle {
        radius: Theme.smallRadius
        color: Theme.cardBackground
        border.width: Theme.hairline
        border.color: Theme.separator
        FocusRing {
            visible: field.activeFocus
        }
    }
}
