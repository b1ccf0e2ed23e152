import QtQuick
import QtQuick.Layouts

// A number to be typed, with its unit beside it. Points are decimal points in every language. What
// is no number or lies out of range is shown as wrong, told to nobody, and goes with the focus. A
// value that is no number shows as none.
RowLayout {
    id: field

    required property string name
    required property real value
    property real from: 0
    property real to: 1000000
    property real step: 0
    property int decimals: 0
    property string unit: ""

    signal edited(real value)

    function shown(number) {
        return isNaN(number) ? "" : Number(number).toFixed(decimals);
    }
    function isInRange(text) {
        return /^-?\d+(\.\d+)?$/.test(text) && Number(text) >= from && Number(text) <= to;
    }
    function stepBy(steps) {
        const next = isNaN(value) ? from : Math.min(to, Math.max(from, value + steps * step));
        if (next === value)
            return;
        edited(Number(shown(next)));
        settle();
    }
    function settle() {
        input.text = Qt.binding(() => field.shown(field.value));
    }

    spacing: Theme.small

    InputField {
        id: input

        objectName: field.objectName + ".input"
        name: field.name
        text: field.shown(field.value)
        isValid: field.isInRange(text)
        horizontalAlignment: TextInput.AlignRight
        inputMethodHints: Qt.ImhFormattedNumbersOnly
        validator: RegularExpressionValidator {
            regularExpression: field.decimals > 0 ? /-?\d*\.?\d*/ : /-?\d*/
        }
        implicitWidth: Theme.numberWidth
        Layout.fillWidth: false
        Accessible.description: field.unit
        Accessible.onIncreaseAction: field.stepBy(1)
        Accessible.onDecreaseAction: field.stepBy(-1)
        Keys.enabled: field.step > 0
        Keys.onUpPressed: field.stepBy(1)
        Keys.onDownPressed: field.stepBy(-1)
        onTextEdited: {
            // Without its binding, which would set it anew under the cursor.
            text = text;
            if (field.isInRange(text) && Number(text) !== field.value)
                field.edited(Number(text));
        }
        onEditingFinished: field.settle()
    }
    PlainText {
        visible: field.unit !== ""
        text: field.unit
    }
}
