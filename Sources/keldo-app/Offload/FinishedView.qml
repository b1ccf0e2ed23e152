import QtQuick
import Keldo.Components
import Keldo.Offload

Column {
    id: view

    required property OffloadViewModel model

    signal formatRequested

    spacing: Theme.wide

    Card {
        visible: view.model.errorMessage !== ""
        title: "Offload Failed"
        systemImage: "xmark.octagon.fill"
        tint: Theme.danger

        TextEdit {
            objectName: "offload.error"
            width: parent.width
            text: view.model.errorMessage
            color: Theme.danger
            font: Theme.body
            readOnly: true
            selectByMouse: true
            wrapMode: TextEdit.Wrap
            textFormat: TextEdit.PlainText
            Accessible.role: Accessible.StaticText
            Accessible.name: text
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
