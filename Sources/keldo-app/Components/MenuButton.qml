import QtQuick

// A button that opens a list of what it can do.
ActionButton {
    id: button

    required property var labels
    property int currentIndex: -1

    signal chosen(int index)

    trailingSymbol: "chevron.down"
    spokenRole: Accessible.ButtonMenu
    onClicked: choices.open()

    ChoiceList {
        id: choices
        name: button.text
        labels: button.labels
        currentIndex: button.currentIndex
        onChosen: index => button.chosen(index)
    }
}
