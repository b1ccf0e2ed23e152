import QtQuick
import QtQuick.Layouts

// A label and, behind it, what it is for. Rows of one card have the same `labelWidth`.
RowLayout {
    id: row

    required property string label
    property int labelWidth: Theme.labelWidth

    spacing: Theme.medium

    PlainText {
        objectName: row.objectName + ".label"
        text: row.label
        wrapMode: Text.Wrap
        Layout.preferredWidth: row.labelWidth
        Layout.maximumWidth: row.labelWidth
    }
}
