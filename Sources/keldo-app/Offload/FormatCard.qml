pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
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

    Note {
        objectName: "offload.reason"
        text: card.model.gate?.reason ?? ""
        color: card.eligible ? Theme.primary : Theme.secondary
        font: Theme.body
    }
    SelectableText {
        objectName: "offload.formatStatus"
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
    Busy {
        objectName: "offload.erasing"
        visible: card.model.isFormatting
        text: "Erasing…"
    }
    ActionButton {
        objectName: "offload.formatButton"
        visible: card.eligible && card.model.formatStatus === "" && !card.model.isFormatting
        role: ActionButton.Role.Destructive
        text: "Format Card…"
        symbol: "trash.fill"
        Layout.alignment: Qt.AlignRight
        onClicked: card.formatRequested()
    }
}
