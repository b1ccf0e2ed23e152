import QtQuick

// A label and a fact behind it.
FormRow {
    id: row

    required property string value

    Note {
        objectName: row.objectName + ".value"
        text: row.value
        color: Theme.primary
        font: Theme.emphasis
    }
}
