pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components
import Keldo.Offload

Card {
    id: view

    required property OffloadViewModel model
    readonly property var progress: model.progress
    readonly property double fraction: progress?.fraction ?? 0

    objectName: "offload.running"
    title: "Offloading"
    systemImage: "arrow.triangle.2.circlepath"

    function phaseText(phase) {
        switch (phase) {
        case "scanning":
            return "Scanning source…";
        case "copying":
            return "Copying to all drives…";
        case "verifying":
            return "Verifying checksums…";
        case "writingReport":
            return "Writing hash report…";
        default:
            return "Finishing…";
        }
    }

    Item {
        width: parent.width
        height: phase.implicitHeight
        PlainText {
            id: phase
            objectName: "offload.phase"
            text: view.phaseText(view.progress?.phase)
            font: Theme.emphasis
        }
        PlainText {
            objectName: "offload.percent"
            anchors.right: parent.right
            text: Math.floor(view.fraction * 100) + "%"
            font: Theme.strong
        }
    }
    ProgressLine {
        objectName: "offload.progress"
        width: parent.width
        value: view.fraction
        Accessible.name: phase.text
    }
    PlainText {
        objectName: "offload.current"
        width: parent.width
        visible: text !== ""
        text: view.progress?.currentFile ?? ""
        color: Theme.secondary
        font: Theme.print
        elide: Text.ElideMiddle
        maximumLineCount: 1
    }
    Item {
        width: parent.width
        height: cancel.height
        Row {
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.wide
            StatBadge {
                objectName: "offload.files"
                text: (view.progress?.filesCompleted ?? 0) + "/" + (view.progress?.totalFiles ?? 0) + " files"
                symbol: "doc.on.doc"
            }
            StatBadge {
                objectName: "offload.bytes"
                text: (view.progress?.completed ?? "0 B") + " / " + (view.progress?.total ?? "0 B")
                symbol: "scalemass"
            }
            StatBadge {
                objectName: "offload.drives"
                text: view.model.destinations.count + " drives"
                symbol: "externaldrive"
            }
        }
        ActionButton {
            id: cancel
            objectName: "offload.cancel"
            anchors.right: parent.right
            role: "destructive"
            text: "Cancel"
            symbol: "stop.fill"
            onClicked: view.model.cancel()
        }
    }
}
