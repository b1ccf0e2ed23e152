import QtQuick
import QtQuick.Layouts

// Something that is on or off. It shows `on` and asks for the other by `switched`.
PressButton {
    id: toggle

    required property bool on

    signal switched(bool on)

    takesReturn: false
    Layout.fillWidth: true
    spokenRole: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: on
    onClicked: switched(!on)

    contentItem: RowLayout {
        spacing: Theme.small

        Rectangle {
            implicitWidth: Theme.iconSize + 2
            implicitHeight: Theme.iconSize + 2
            Layout.alignment: Qt.AlignTop
            radius: Theme.tiny
            color: !toggle.enabled ? Theme.troughBackground
                 : toggle.on ? Theme.prominentBackground : Theme.cardBackground
            border.width: toggle.on && toggle.enabled ? 0 : Theme.hairline
            border.color: Theme.secondary

            Symbol {
                anchors.centerIn: parent
                visible: toggle.on
                name: "checkmark"
                color: toggle.enabled ? Theme.onProminent : Theme.secondary
                size: Theme.regular
            }
            FocusRing {
                visible: toggle.visualFocus
            }
        }
        PlainText {
            text: toggle.text
            color: toggle.enabled ? Theme.primary : Theme.secondary
            wrapMode: Text.Wrap
            Layout.fillWidth: true
            Accessible.ignored: true
        }
    }
}
