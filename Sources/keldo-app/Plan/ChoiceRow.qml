import QtQuick
import Keldo.Components

// A label and one choice of a list of texts with their values.
FormRow {
    id: row

    required property var choices
    required property var value

    signal chosen(var value)

    labelWidth: Theme.planLabelWidth

    Picker {
        objectName: row.objectName + ".picker"
        name: row.label
        labels: row.choices.map(choice => choice.text)
        currentIndex: row.choices.findIndex(choice => choice.value === row.value)
        onChosen: index => row.chosen(row.choices[index].value)
    }
}
