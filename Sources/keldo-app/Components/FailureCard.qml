import QtQuick

// A job that failed, in its own words, and what there is to add to them.
Card {
    id: card

    required property string message
    property var reasons: []

    systemImage: "xmark.octagon.fill"
    tint: Theme.danger

    SelectableText {
        objectName: card.objectName + ".message"
        text: card.message
        color: Theme.danger
    }
    Notices {
        objectName: card.objectName + ".reasons"
        lines: card.reasons
    }
}
