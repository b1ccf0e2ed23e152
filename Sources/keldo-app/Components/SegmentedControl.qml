pragma ComponentBehavior: Bound
import QtQuick

// One choice of a few, side by side. Tab reaches it as a whole, the arrow keys move the choice.
Rectangle {
    id: control

    required property string name
    required property var labels
    required property int currentIndex

    signal chosen(int index)

    function choose(index) {
        if (index >= 0 && index < labels.length)
            chosen(index);
    }

    implicitWidth: Theme.choiceWidth
    implicitHeight: Theme.buttonHeight + 2
    color: Theme.troughBackground
    radius: Theme.small
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Accessible.name: name
    Accessible.focusable: true
    Keys.onLeftPressed: choose(currentIndex - 1)
    Keys.onRightPressed: choose(currentIndex + 1)

    Row {
        id: row
        anchors.fill: parent
        anchors.margins: 2

        Repeater {
            model: control.labels

            PressButton {
                id: segment

                required property int index
                required property string modelData
                readonly property bool isCurrent: index === control.currentIndex

                objectName: control.objectName + "." + modelData
                text: modelData
                width: row.width / control.labels.length
                height: row.height
                horizontalPadding: Theme.tiny
                takesFocus: false
                spokenRole: Accessible.RadioButton
                Accessible.checkable: true
                Accessible.checked: isCurrent
                onClicked: control.chosen(index)

                contentItem: PlainText {
                    text: segment.text
                    color: control.enabled ? Theme.primary : Theme.secondary
                    font: segment.isCurrent ? Theme.strong : Theme.body
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                    Accessible.ignored: true
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
