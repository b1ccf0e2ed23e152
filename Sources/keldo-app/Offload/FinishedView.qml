import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

ColumnLayout {
    id: view

    required property OffloadViewModel model

    readonly property Item outcome: failure.visible ? failure : verdict

    signal formatRequested

    spacing: Theme.wide

    FailureCard {
        id: failure
        objectName: "offload.failed"
        visible: view.model.errorMessage !== ""
        title: "Offload Failed"
        message: view.model.errorMessage
        reasons: view.model.errorReason === "" ? [] : [view.model.errorReason]
    }
    VerdictCard {
        id: verdict
        visible: !failure.visible && view.model.result !== undefined
        model: view.model
    }
    FormatCard {
        visible: !failure.visible && view.model.gate !== undefined
        model: view.model
        onFormatRequested: view.formatRequested()
    }
}
