import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Transcript

// Which clip, and how it is to be made into a transcript.
ColumnLayout {
    id: view

    required property TranscriptViewModel transcript
    readonly property bool isProbing: transcript.stage === TranscriptViewModel.Stage.probing
    readonly property bool hasClip: transcript.input.path !== ""

    spacing: Theme.wide

    Card {
        objectName: "transcript.clipCard"
        title: "Clip"
        systemImage: "film"

        PathRow { objectName: "transcript.input"; path: view.transcript.input.path; placeholder: "No clip selected"; buttonText: "Choose"; buttonDescription: "Choose a clip to transcribe"; onChosen: view.transcript.chooseInput() }
        Busy { objectName: "transcript.probing"; visible: view.isProbing; text: "Reading audio tracks & timecode…" }
        Badges {
            visible: view.hasClip && !view.isProbing
            StatBadge { objectName: "transcript.channels"; text: view.transcript.channelCount + " ISO channel" + (view.transcript.channelCount === 1 ? "" : "s"); symbol: "waveform" }
            StatBadge { objectName: "transcript.startTC"; text: "Start TC " + (view.transcript.detectedTC || "none"); symbol: "timer" }
        }
        Note { objectName: "transcript.local"; text: "Audio stays on this Mac — Whisper runs locally." }
    }
    SpeakersCard { transcript: view.transcript }
    Card {
        objectName: "transcript.analysisCard"
        title: "Analysis (on-device)"
        systemImage: "eye"

        Note { objectName: "transcript.analysisNote"; text: "All analysis runs locally with Apple Vision — nothing leaves this Mac." }
        Toggle { objectName: "transcript.readSlate"; text: "Read the slate"; on: view.transcript.readSlate; onSwitched: on => view.transcript.readSlate = on }
        Note { objectName: "transcript.slateNote"; Layout.leftMargin: Theme.huge; text: "OCR the clapperboard from the clip head — Scene / Take / Roll / Director." }
        Toggle { objectName: "transcript.hints"; text: "Appearance hints per speaker"; on: view.transcript.appearanceHints; onSwitched: on => view.transcript.appearanceHints = on }
        Note { objectName: "transcript.hintsNote"; Layout.leftMargin: Theme.huge; text: "Sample a frame while each speaker talks and note the person on camera (e.g. “in blue”) for you to confirm." }
    }
    Card {
        objectName: "transcript.modelCard"
        title: "Speech Model"
        systemImage: "waveform"

        FormRow {
            visible: view.transcript.models.length > 0
            label: "Model"
            labelWidth: Theme.typedWidth
            Picker { objectName: "transcript.model"; name: "Model"; labels: view.transcript.models; currentIndex: view.transcript.modelIndex; onChosen: index => view.transcript.modelIndex = index }
        }
        Note { objectName: "transcript.noModels"; visible: view.transcript.models.length === 0; font: Theme.body; text: "No models installed." }
        Note { objectName: "transcript.modelElsewhere"; visible: view.transcript.modelIndex < 0 && view.transcript.selectedModel.path !== ""; text: "Now in use: " + view.transcript.selectedModel.path }
        RowLayout {
            spacing: Theme.medium
            MenuButton {
                objectName: "transcript.download"
                text: "Download more…"
                labels: ["base.en  (~142 MB, fast)", "small.en  (~466 MB, more accurate)", "medium.en  (~1.5 GB, best)"]
                onChosen: index => view.transcript.downloadModel(["base.en", "small.en", "medium.en"][index])
            }
            IconButton { objectName: "transcript.modelsFolder"; symbol: "folder"; text: "Show the models folder"; onClicked: view.transcript.revealModelsFolder() }
            Busy { objectName: "transcript.downloading"; visible: view.transcript.downloadingModel !== ""; text: "Downloading " + view.transcript.downloadingModel + "…" }
        }
        Note { objectName: "transcript.modelNote"; text: "Bigger models are more accurate on noisy production audio but slower. base.en is the fast default." }
    }
    Card {
        objectName: "transcript.outputCard"
        title: "Output"
        systemImage: "doc.text"

        PathRow { objectName: "transcript.output"; path: view.transcript.outputDir.path; placeholder: "No folder selected"; buttonText: "Choose"; buttonDescription: "Choose output folder"; onChosen: view.transcript.chooseOutput() }
        Note { objectName: "transcript.outputNote"; text: "Produces a two-column Word document: time-of-day timecode + speaker on the left, dialogue on the right." }
    }
    Notices { objectName: "transcript.objection"; lines: view.transcript.objection === "" ? [] : [view.transcript.objection] }
}
