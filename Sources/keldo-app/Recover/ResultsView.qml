pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Recover

// What a scan has found, and what became of the repairs.
ColumnLayout {
    id: view

    required property RecoverViewModel recover

    spacing: Theme.wide

    Card {
        objectName: "recover.diagnosisCard"
        title: "Diagnosis"
        systemImage: "waveform.path.ecg"
        tint: view.recover.damagedCount === 0 ? Theme.proved : Theme.attention

        StatBadge {
            objectName: "recover.counts"
            text: view.recover.reports.count + " media files · " + view.recover.damagedCount
                + " damaged · " + view.recover.healthyCount + " healthy"
            symbol: "doc.on.doc"
        }
        BoundedList {
            id: reports
            objectName: "recover.reports"
            name: "Diagnosis"
            bound: Theme.longListHeight
            model: view.recover.reports
            delegate: StatusRow {
                id: report
                required property int index
                required property string name
                required property string label
                required property string diagnosis
                objectName: "recover.report." + index
                width: reports.rowWidth
                title: name
                symbol: diagnosis === "repairable" ? "cross.circle.fill"
                      : diagnosis === "healthy" ? "checkmark.circle" : "questionmark.circle"
                color: diagnosis === "repairable" ? Theme.attention
                     : diagnosis === "healthy" ? Theme.proved : Theme.secondary
                NameText {
                    objectName: report.objectName + ".label"
                    name: report.label
                    color: report.color
                    font: Theme.print
                    horizontalAlignment: Text.AlignRight
                    // The name is cut before the diagnosis is.
                    Layout.fillWidth: false
                    Layout.maximumWidth: report.width / 2
                }
            }
        }
    }
    Card {
        objectName: "recover.repairCard"
        visible: view.recover.damagedCount > 0
        title: "Repair"
        systemImage: "wrench.and.screwdriver"

        RepairPlaces {
            objectName: "recover.places"
            recover: view.recover
        }
        NeedsFFmpeg {
            objectName: "recover.ffmpeg"
            visible: !view.recover.ffmpegReady
            reason: "Truncated clips need ffmpeg to be repaired:"
        }
        Busy {
            objectName: "recover.repairing"
            visible: view.recover.stage === RecoverViewModel.Stage.repairing
            text: "Repairing " + view.recover.repairDone + "/" + view.recover.damagedCount
        }
        ActionRow {
            objectName: "recover.repairRow"
            visible: view.recover.stage !== RecoverViewModel.Stage.repairing
            needs: view.recover.outputDir.path === "" ? "No output folder yet." : ""

            DefaultButton {
                objectName: "recover.repair"
                isNext: view.recover.outcomes.count === 0
                text: "Repair " + view.recover.damagedCount + " Clip" + (view.recover.damagedCount === 1 ? "" : "s")
                symbol: "bandage"
                enabled: view.recover.canRepair
                onClicked: view.recover.runRepair()
            }
        }
        Notices {
            objectName: "recover.trouble"
            lines: view.recover.trouble === "" ? [] : [view.recover.trouble]
        }
    }
    Card {
        objectName: "recover.recoveredCard"
        visible: view.recover.outcomes.count > 0
        title: "Recovered"
        systemImage: "checkmark.seal"

        OutcomeList {
            objectName: "recover.outcomes"
            name: "Recovered"
            model: view.recover.outcomes
        }
        ActionButton {
            objectName: "recover.reveal"
            text: "Reveal in Finder"
            symbol: "folder"
            Layout.alignment: Qt.AlignRight
            onClicked: view.recover.reveal()
        }
    }
}
