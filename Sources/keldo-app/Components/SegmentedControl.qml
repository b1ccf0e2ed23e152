import QtQuick
import QtQuick.Controls.Basic

// One choice of a few, side by side. Tab reaches it as a whole, the arrow keys move the choice.
Rectangle {
    id: control

    required property var labels
    required property int currentIndex
    property string name: ""

    signal chosen(int index)

    implicitHeight: Theme.buttonHeight + 2
    color: Theme.troughBackground
    radius: Theme.small
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Accessible.name: name
    Accessible.focusable: true
    Keys.onLeftPressed: choose(currentIndex - 1)
    Keys.onRightPressed: choose(currentIndex + 1)

    function choose(index) {
        if (index >= 0 && index < labels.length)
            chosen(index);
    }

    Row {
        anchors.fill: parent
        anchors.margins: 2

        Repeater {
            model: control.labels

            AbstractButton {
                id: segment

                required property int index
                required property string modelData
                readonly property bool isCurrent: index === control.currentIndex

                objectName: control.objectName + "." + modelData
                text: modelData
                width: parent.width / control.labels.length
                height: parent.height
                focusPolicy: Qt.NoFocus
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData
                Accessible.checked: isCurrent
                onClicked: control.chosen(index)

                contentItem: Text {
                    text: segment.text
                    color: Theme.primary
                    font: segment.isCurrent ? Theme.strong : Theme.body
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                }
                background: Rectangle {
                    radius: Theme.smallRadius
                    color: segment.isCurrent ? Theme.selectedSegment : "transparent"
                    border.width: segment.isCurrent ? Theme.hairline : 0
                    border.color: Theme.separator
                    FocusRing {
                        visible: segment.isCurrent && control.activeFocus
                    }
                }
            }
        }
    }
}
