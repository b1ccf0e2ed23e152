pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

// What was proved, what was not, and the report.
Card {
    id: card

    required property OffloadViewModel model
    readonly property var result: model.result

    objectName: "offload.verdict"
    title: result?.allVerified ? "All Files Verified" : "Verification Problems"
    systemImage: result?.allVerified ? "checkmark.seal.fill" : "exclamationmark.triangle.fill"
    tint: result?.allVerified ? Theme.proved : Theme.attention

    Badges {
        StatBadge { objectName: "offload.verdict.files"; text: (card.result?.fileCount ?? 0) + " files"; symbol: "doc.on.doc" }
        StatBadge { objectName: "offload.verdict.total"; text: card.result?.total ?? ""; symbol: "scalemass" }
        StatBadge { objectName: "offload.verdict.drives"; text: (card.result?.driveCount ?? 0) + " drives"; symbol: "externaldrive" }
        StatBadge { objectName: "offload.verdict.algorithm"; text: card.result?.algorithm ?? ""; symbol: "number" }
    }
    Notices {
        objectName: "offload.notes"
        lines: card.result ? card.result.weakerProofs.concat(card.result.missingLists) : []
    }
    PlainText {
        objectName: "offload.failures.title"
        visible: failures.count > 0
        text: "Failed files:"
        color: Theme.danger
        font: Theme.emphasis
    }
    BoundedList {
        id: failures
        objectName: "offload.failures"
        name: "Failed files"
        model: card.model.failedFiles
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
        NameText {
            objectName: "offload.reportStatus"
            name: card.model.reportStatus
            color: Theme.secondary
            font: Theme.print
        }
        ActionButton {
            objectName: "offload.save"
            text: "Save Report (PDF + CSV)…"
            symbol: "doc.text"
            onClicked: card.model.saveReport()
        }
    }
}
