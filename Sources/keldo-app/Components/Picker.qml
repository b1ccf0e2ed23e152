import QtQuick
import QtQuick.Layouts

// One choice of many, of which only the chosen one shows until it is pressed. The arrow keys move
// the choice. `groups` has the heading that each label stands under, where there are headings.
PressButton {
    id: picker

    required property string name
    required property var labels
    required property int currentIndex
    property var groups: []

    signal chosen(int index)

    function choose(index) {
        if (index >= 0 && index < labels.length)
            chosen(index);
    }

    text: labels[currentIndex] ?? ""
    takesReturn: false
    implicitWidth: Math.max(Theme.typedWidth, choices.textWidth() + 2 * Theme.regular + Theme.huge)
    implicitHeight: Theme.fieldHeight
    horizontalPadding: Theme.regular
    spokenRole: Accessible.ComboBox
    Accessible.name: name
    details: text
    Keys.onUpPressed: choose(currentIndex - 1)
    Keys.onDownPressed: choose(currentIndex + 1)
    onClicked: choices.open()

    contentItem: RowLayout {
        spacing: Theme.small
        NameText {
            name: picker.text
            color: picker.enabled ? Theme.primary : Theme.secondary
            Accessible.ignored: true
        }
        Symbol {
            name: "chevron.down"
            color: Theme.secondary
            size: Theme.regular
        }
    }
    background: Rectangle {
        radius: Theme.smallRadius
        color: picker.enabled ? Theme.buttonBackground : Theme.troughBackground
        border.width: Theme.hairline
        border.color: Theme.separator
        FocusRing {
            visible: picker.visualFocus
        }
    }
    ChoiceList {
        id: choices
        name: picker.name
        labels: picker.labels
        groups: picker.groups
        currentIndex: picker.currentIndex
        onChosen: index => picker.chosen(index)
    }
}
