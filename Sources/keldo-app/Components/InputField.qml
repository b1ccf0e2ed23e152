import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// One line of text to be typed.
TextField {
    id: field

    required property string name
    property bool isValid: true

    implicitWidth: Theme.typedWidth
    implicitHeight: Theme.fieldHeight
    Layout.fillWidth: true
    leftPadding: Theme.small
    rightPadding: Theme.small
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter
    color: isValid ? Theme.primary : Theme.danger
    placeholderTextColor: Theme.secondary
    selectionColor: Theme.prominentBackground
    selectedTextColor: Theme.onProminent
    selectByMouse: true
    font: Theme.body
    Accessible.name: name

    background: Rectangle {
        radius: Theme.smallRadius
        color: field.enabled ? Theme.cardBackground : Theme.fieldBackground
        border.width: Theme.hairline
        border.color: field.isValid ? Theme.separator : Theme.danger
        FocusRing {
            visible: field.activeFocus
        }
    }
}
