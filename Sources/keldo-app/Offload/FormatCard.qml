pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components
import Keldo.Offload

// Whether the card may be erased, and what became of it.
Card {
    id: card

    required property OffloadViewModel model
    readonly property bool eligible: model.gate?.eligible ?? false

    signal formatRequested

    objectName: "offload.format"
    title: "Format Card?"
    systemImage: "trash"
    tint: eligible ? Theme.accent : Theme.secondary

    PlainText {
        objectName: "offload.reason"
        width: parent.width
        text: card.model.gate?.reason ?? ""
        color: card.eligible ? Theme.primary : Theme.secondary
        wrapMode: Text.Wrap
    }
    SelectableText {
        objectName: "offload.formatStatus"
        width: parent.width
        visible: text !== ""
        text: card.model.formatStatus.replace(/\s+$/, "")
        color: text.startsWith("✓") ? Theme.proved : Theme.danger
        font: Theme.code
    }
    SymbolLabel {
        objectName: "offload.locked"
        visible: !card.eligible
        text: "Formatting locked — keep the card."
        symbol: "lock.fill"
        color: Theme.secondary
    }
    SymbolLabel {
        objectName: "offload.erasing"
        visible: card.model.isFormatting
        text: "Erasing…"
        symbol: "trash"
        color: Theme.secondary
    }
    Item {
        width: parent.width
        height: format.height
        visible: card.eligible && card.model.formatStatus === "" && !card.model.isFormatting
        ActionButton {
            id: format
            objectName: "offload.formatButton"
            anchors.right: parent.right
            role: "destructive"
            text: "Format Card…"
            symbol: "trash.fill"
            onClicked: card.formatRequested()
        }
    }
}
