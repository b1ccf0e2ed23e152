import QtQuick
import QtQuick.Layouts

// A job that runs: what it does, how much of 1 is done, what it works on, small facts, and a button
// that asks it to stop.
Card {
    id: card

    required property string phase
    required property real fraction
    property string current: ""
    property string cancelText: "Cancel"
    property string note: ""
    default property alias badges: facts.content

    signal cancelled

    systemImage: "arrow.triangle.2.circlepath"

    RowLayout {
        NameText {
            objectName: card.objectName + ".phase"
            name: card.phase
            font: Theme.emphasis
        }
        PlainText {
            objectName: card.objectName + ".percent"
            text: Math.floor(card.fraction * 100) + "%"
            font: Theme.strong
        }
    }
    ProgressLine {
        objectName: card.objectName + ".progress"
        name: card.phase
        value: card.fraction
    }
    NameText {
        objectName: card.objectName + ".current"
        visible: name !== ""
        name: card.current
        color: Theme.secondary
        font: Theme.print
    }
    RowLayout {
        Badges {
            id: facts
        }
        ActionButton {
            objectName: card.objectName + ".cancel"
            role: ActionButton.Role.Destructive
            text: card.cancelText
            symbol: "stop.fill"
            onClicked: card.cancelled()
        }
    }
    Note {
        objectName: card.objectName + ".note"
        visible: text !== ""
        horizontalAlignment: Text.AlignRight
        text: card.note
    }
}
