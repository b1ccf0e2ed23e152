pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
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

    Row {
        spacing: Theme.wide
        StatBadge {
            objectName: "offload.verdict.files"
            text: (card.result?.fileCount ?? 0) + " files"
            symbol: "doc.on.doc"
        }
        StatBadge {
            objectName: "offload.verdict.total"
            text: card.result?.total ?? ""
            symbol: "scalemass"
        }
        StatBadge {
            objectName: "offload.verdict.drives"
            text: (card.result?.driveCount ?? 0) + " drives"
            symbol: "externaldrive"
        }
        StatBadge {
            objectName: "offload.verdict.algorithm"
            text: card.result?.algorithm ?? ""
            symbol: "number"
        }
    }
    AttentionLines {
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
    ListView {
        id: failures
        objectName: "offload.failures"
        width: parent.width
        height: Math.min(contentHeight, Theme.listHeight)
        visible: count > 0
        clip: true
        spacing: Theme.tiny
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: contentHeight > height
        Accessible.role: Accessible.List
        Accessible.name: "Failed files"
        model: card.model.failedFiles
        ScrollBar.vertical: ScrollBar {
            policy: failures.contentHeight > failures.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }
        FocusRing {
            visible: failures.activeFocus
            radius: Theme.smallRadius
            anchors.margins: 0
        }
        delegate: SymbolLabel {
            required property string path
            required property int index
            objectName: "offload.failures." + index
            text: path
            symbol: "xmark.circle.fill"
            color: Theme.danger
            font: Theme.print
            maximumWidth: failures.width - Theme.large
        }
    }
    Item {
        width: parent.width
        height: save.height
        PlainText {
            objectName: "offload.reportStatus"
            anchors { left: parent.left; right: save.left; rightMargin: Theme.regular; verticalCenter: parent.verticalCenter }
            text: card.model.reportStatus
            color: Theme.secondary
            font: Theme.print
            elide: Text.ElideMiddle
        }
        ActionButton {
            id: save
            objectName: "offload.save"
            anchors.right: parent.right
            text: "Save Report (PDF + CSV)…"
            symbol: "doc.text"
            onClicked: card.model.saveReport()
        }
    }
}
