import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Plan
import Keldo.Support

// How a shoot will run, and the cards and drives that it takes.
Page {
    id: screen

    required property Desktop desktop

    objectName: "plan.page"

    PlanViewModel {
        id: plan
        objectName: "plan"
        desktop: screen.desktop
    }

    Card {
        objectName: "plan.formatCard"
        title: "Camera Format"
        systemImage: "camera"

        ChoiceRow {
            objectName: "plan.codec"
            label: "Codec"
            choices: plan.codecs
            value: plan.codecID
            onChosen: value => plan.codecID = value
        }
        Note {
            objectName: "plan.codecNote"
            visible: text !== ""
            text: plan.codecNote
        }
        ChoiceRow {
            objectName: "plan.resolution"
            visible: plan.usesResolution
            label: "Resolution"
            choices: plan.resolutions
            value: plan.resolutionID
            onChosen: value => plan.resolutionID = value
        }
        ChoiceRow {
            objectName: "plan.fps"
            label: "Frame rate"
            choices: plan.rates
            value: plan.fps
            onChosen: value => plan.fps = value
        }
        FormRow {
            visible: plan.codecID === "custom"
            label: "Bitrate"
            labelWidth: Theme.planLabelWidth
            NumberField {
                objectName: "plan.bitrate"
                name: "Bitrate"
                value: plan.customMbps
                from: 0.1
                decimals: 1
                unit: "Mbps"
                onEdited: value => plan.customMbps = value
            }
        }
        Note {
            objectName: "plan.bitrateNote"
            visible: plan.codecID === "custom"
            text: "Mbps — from the camera's spec sheet"
        }
    }
    Card {
        objectName: "plan.shootCard"
        title: "Shooting Plan"
        systemImage: "calendar.badge.clock"

        StepperRow { objectName: "plan.hours"; label: "Recorded hours / camera / day"; value: plan.hoursPerDay; from: 0.5; to: 16; step: 0.5; decimals: 1; unit: "h"; onEdited: value => plan.hoursPerDay = value }
        StepperRow { objectName: "plan.cameras"; label: "Cameras"; value: plan.cameras; from: 1; to: 8; onEdited: value => plan.cameras = value }
        StepperRow { objectName: "plan.days"; label: "Shoot days"; value: plan.days; from: 1; to: 120; onEdited: value => plan.days = value }
        StepperRow { objectName: "plan.audio"; label: "Sound recorder channels"; value: plan.audioChannels; from: 0; to: 16; onEdited: value => plan.audioChannels = value }
    }
    CameraCardsCard {
        plan: plan
    }
    Card {
        objectName: "plan.safetyCard"
        title: "Safety"
        systemImage: "externaldrive.fill.badge.checkmark"

        StepperRow { objectName: "plan.copies"; label: "Copies (originals + backups)"; value: plan.copies; from: 1; to: 5; onEdited: value => plan.copies = value }
        StepperRow { objectName: "plan.margin"; label: "Headroom margin"; value: plan.margin; from: 0; to: 50; step: 5; unit: "%"; onEdited: value => plan.margin = value }
        Note {
            objectName: "plan.safetyNote"
            text: "Standard DIT practice is 3 copies on separate drives. Margin keeps drives from running full."
        }
    }
    Card {
        objectName: "plan.needCard"
        title: "You Need"
        systemImage: "checkmark.seal"

        Note {
            objectName: "plan.nothing"
            visible: !plan.facts.hasEstimate
            text: "Nothing to show: a setting above has no meaning here. Choose it anew."
        }
        ColumnLayout {
            visible: plan.facts.hasEstimate
            spacing: Theme.medium

            SymbolLabel { objectName: "plan.rate"; text: plan.facts.rate; symbol: "speedometer" }
            SymbolLabel { objectName: "plan.perDay"; text: plan.facts.perDay; symbol: "sun.max" }
            FactRow { objectName: "plan.wholeShoot"; label: "Whole shoot (one copy)"; labelWidth: Theme.planLabelWidth; value: plan.facts.wholeShoot }
            FactRow { objectName: "plan.perCopy"; label: "Per copy with margin"; labelWidth: Theme.planLabelWidth; value: plan.facts.perCopy }
            FactRow { objectName: "plan.drives"; label: "Drives per copy"; labelWidth: Theme.planLabelWidth; value: plan.facts.drivesPerCopy }
            FactRow { objectName: "plan.total"; label: "Total to purchase"; labelWidth: Theme.planLabelWidth; value: plan.facts.total }
        }
    }
    Card {
        objectName: "plan.sendCard"
        title: "Send to Production"
        systemImage: "arrowshape.turn.up.right"

        Note {
            objectName: "plan.sendNote"
            text: "The PDF shows the full derivation — rates, hours, copies, hold policy — so production and post have the why on record, not just the number."
        }
        FormRow {
            label: "Production"
            labelWidth: Theme.planLabelWidth
            InputField {
                objectName: "plan.production"
                name: "Production"
                text: plan.production
                placeholderText: "Night Shift, block 2"
                onTextEdited: plan.production = text
            }
        }
        RowLayout {
            spacing: Theme.medium
            Layout.fillWidth: false
            Layout.alignment: Qt.AlignRight
            ActionButton {
                objectName: "plan.email"
                text: "Email PDF"
                symbol: "envelope"
                enabled: plan.facts.hasEstimate
                onClicked: plan.emailReport()
            }
            ActionButton {
                objectName: "plan.save"
                text: "Save Report (PDF + CSV)…"
                symbol: "doc.text"
                enabled: plan.facts.hasEstimate
                onClicked: plan.saveReport()
            }
        }
        Note {
            objectName: "plan.reportStatus"
            horizontalAlignment: Text.AlignRight
            visible: text !== ""
            text: plan.reportStatus
        }
    }
}
