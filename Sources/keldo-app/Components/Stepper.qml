import QtQuick
import QtQuick.Layouts

// A number between two buttons that make it smaller and greater by a step. It can be typed as well,
// and the arrow keys step it.
RowLayout {
    id: stepper

    required property string name
    required property real value
    required property real from
    required property real to
    property real step: 1
    property int decimals: 0
    property string unit: ""

    signal edited(real value)

    spacing: Theme.tiny

    IconButton {
        objectName: stepper.objectName + ".less"
        symbol: "minus"
        text: "Less: " + stepper.name
        takesFocus: false
        autoRepeat: true
        enabled: !(stepper.value <= stepper.from)
        onClicked: number.stepBy(-1)
    }
    NumberField {
        id: number
        objectName: stepper.objectName
        name: stepper.name
        value: stepper.value
        from: stepper.from
        to: stepper.to
        step: stepper.step
        decimals: stepper.decimals
        Layout.fillWidth: false
        onEdited: value => stepper.edited(value)
    }
    IconButton {
        objectName: stepper.objectName + ".more"
        symbol: "plus"
        text: "More: " + stepper.name
        takesFocus: false
        autoRepeat: true
        enabled: !(stepper.value >= stepper.to)
        onClicked: number.stepBy(1)
    }
    PlainText {
        visible: stepper.unit !== ""
        text: stepper.unit
    }
    Item {
        Layout.fillWidth: true
    }
}
