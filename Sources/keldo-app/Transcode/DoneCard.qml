pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Transcode

// What became of each clip of the batch, and the report.
Card {
    id: card

    required property TranscodeViewModel transcode
    readonly property bool isComplete: transcode.failures.count === 0

    objectName: "transcode.doneCard"
    title: isComplete ? "Transcode Complete" : "Completed with Errors"
    systemImage: isComplete ? "checkmark.seal.fill" : "exclamationmark.triangle.fill"
    tint: isComplete ? Theme.proved : Theme.attention

    StatBadge {
        objectName: "transcode.summary"
        text: card.transcode.completed.count + " of " + card.transcode.inputs.count + " clips → " + card.transcode.presetName
        symbol: "film"
    }
    BoundedList {
        id: completed
        objectName: "transcode.completed"
        name: "Transcoded"
        bound: Theme.longListHeight
        model: card.transcode.completed
        delegate: StatusRow {
            required property int index
            required property string name
            objectName: "transcode.completed." + index
            width: completed.rowWidth
            title: name
            symbol: "checkmark.circle"
            color: Theme.proved
        }
    }
    BoundedList {
        id: failures
        objectName: "transcode.failures"
        name: "Failed"
        spacing: Theme.medium
        bound: Theme.longListHeight
        model: card.transcode.failures
        delegate: StatusRow {
            required property int index
            required property string name
            required property string message
            objectName: "transcode.failures." + index
            width: failures.rowWidth
            title: name
            detail: message
            symbol: "xmark.circle.fill"
            color: Theme.danger
        }
    }
    RowLayout {
        spacing: Theme.regular
        NameText {
            objectName: "transcode.reportStatus"
            name: card.transcode.reportStatus
            color: Theme.secondary
            font: Theme.print
        }
        ActionButton {
            objectName: "transcode.save"
            text: "Save Report (PDF + CSV)…"
            symbol: "doc.text"
            onClicked: card.transcode.saveReport()
        }
    }
}
