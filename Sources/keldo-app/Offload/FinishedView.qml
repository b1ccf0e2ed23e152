pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

// Why the run failed; or what was proved, the report, and whether the card may be erased.
ColumnLayout {
    id: view

    required property OffloadViewModel model
    readonly property var result: model.result
    readonly property bool isProved: result?.allVerified ?? false
    readonly property bool isEligible: model.isEligible
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
    Card {
        id: verdict
        objectName: "offload.verdict"
        visible: !failure.visible && view.result !== undefined
        title: view.isProved ? "All Files Verified" : "Verification Problems"
        systemImage: view.isProved ? "checkmark.seal.fill" : "exclamationmark.triangle.fill"
        tint: view.isProved ? Theme.proved : Theme.attention

        Badges {
            StatBadge { objectName: "offload.verdict.files"; text: (view.result?.fileCount ?? 0) + " files"; symbol: "doc.on.doc" }
            StatBadge { objectName: "offload.verdict.total"; text: view.result?.total ?? ""; symbol: "scalemass" }
            StatBadge { objectName: "offload.verdict.drives"; text: (view.result?.driveCount ?? 0) + " drives"; symbol: "externaldrive" }
            StatBadge { objectName: "offload.verdict.algorithm"; text: view.result?.algorithm ?? ""; symbol: "number" }
        }
        Notices {
            objectName: "offload.notes"
            lines: view.result ? view.result.weakerProofs.concat(view.result.missingLists) : []
        }
        PlainText { objectName: "offload.failures.title"; visible: failures.count > 0; text: "Failed files:"; color: Theme.danger; font: Theme.emphasis }
        BoundedList {
            id: failures
            objectName: "offload.failures"
            name: "Failed files"
            model: view.model.failedFiles
            delegate: StatusRow {
                required property string path
                required property int index
                objectName: "offload.failures." + index
                width: failures.rowWidth
                title: path
                symbol: "xmark.circle.fill"
                color: Theme.danger
                titleColor: Theme.danger
                titleFont: Theme.print
            }
        }
        RowLayout {
            spacing: Theme.regular
            NameText { objectName: "offload.reportStatus"; name: view.model.reportStatus; color: Theme.secondary; font: Theme.print }
            ActionButton {
                objectName: "offload.save"
                text: "Save Report (PDF + CSV)…"
                symbol: "doc.text"
                onClicked: view.model.saveReport()
            }
        }
    }
    Card {
        objectName: "offload.format"
        visible: !failure.visible && view.result !== undefined
        title: "Format Card?"
        systemImage: "trash"
        tint: view.isEligible ? Theme.accent : Theme.secondary

        Note {
            objectName: "offload.reason"
            text: view.model.gateReason
            color: view.isEligible ? Theme.primary : Theme.secondary
            font: Theme.body
        }
        SelectableText {
            objectName: "offload.formatStatus"
            visible: text !== ""
            text: view.model.formatStatus.replace(/\s+$/, "")
            color: text.startsWith("✓") ? Theme.proved : Theme.danger
            font: Theme.code
        }
        SymbolLabel { objectName: "offload.locked"; visible: !view.isEligible; text: "Formatting locked — keep the card."; symbol: "lock.fill"; color: Theme.secondary }
        Busy { objectName: "offload.erasing"; visible: view.model.isFormatting; text: "Erasing…" }
        Notices {
            objectName: "offload.formatObjection"
            lines: view.isEligible && view.model.formatObjection !== "" ? [view.model.formatObjection] : []
        }
        ActionButton {
            objectName: "offload.formatButton"
            visible: view.isEligible && view.model.formatStatus === "" && !view.model.isFormatting
            role: ActionButton.Role.Destructive
            text: "Format Card…"
            symbol: "trash.fill"
            enabled: view.model.formatObjection === ""
            Layout.alignment: Qt.AlignRight
            onClicked: view.formatRequested()
        }
    }
}
