import QtQuick
import Keldo.Components
import Keldo.Offload

Column {
    id: view

    required property OffloadViewModel model

    signal formatRequested

    spacing: Theme.wide

    Card {
        objectName: "offload.failed"
        visible: view.model.errorMessage !== ""
        title: "Offload Failed"
        systemImage: "xmark.octagon.fill"
        tint: Theme.danger

        SelectableText {
            objectName: "offload.error"
            width: parent.width
            text: view.model.errorMessage
            color: Theme.danger
        }
        AttentionLines {
            objectName: "offload.errorReason"
            lines: view.model.errorReason === "" ? [] : [view.model.errorReason]
        }
    }
    Loader {
        width: parent.width
        active: view.model.errorMessage === "" && view.model.result !== undefined
        sourceComponent: VerdictCard {
            model: view.model
        }
    }
    Loader {
        width: parent.width
        active: view.model.errorMessage === "" && view.model.gate !== undefined
        sourceComponent: FormatCard {
            model: view.model
            onFormatRequested: view.formatRequested()
        }
    }
}
