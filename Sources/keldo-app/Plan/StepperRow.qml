import QtQuick
import Keldo.Components

// A label and a number that is stepped or typed.
FormRow {
    id: row

    required property real value
    required property real from
    required property real to
    property real step: 1
    property int decimals: 0
    property string unit: ""

    signal edited(real value)

    labelWidth: Theme.planLabelWidth

    Stepper {
        objectName: row.objectName + ".stepper"
        name: row.label
        value: row.value
        from: row.from
        to: row.to
        step: row.step
        decimals: row.decimals
        unit: row.unit
        onEdited: value => row.edited(value)
    }
}
