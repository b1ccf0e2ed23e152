pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Transcript

// How it is known who speaks.
Card {
    id: card

    required property TranscriptViewModel transcript
    readonly property int mode: transcript.speakerMode
    readonly property bool isDiarizing: mode === TranscriptViewModel.SpeakerMode.diarize
    readonly property bool isByFile: mode === TranscriptViewModel.SpeakerMode.files
    readonly property int people: transcript.numSpeakers

    objectName: "transcript.speakersCard"
    title: "Speakers"
    systemImage: "person.2"

    FormRow {
        label: "How to find speakers"
        labelWidth: Theme.typedWidth
        SegmentedControl { objectName: "transcript.mode"; name: "How to find speakers"; labels: ["Auto-detect", "ISO channels", "Separate files"]; currentIndex: card.mode; onChosen: index => card.transcript.speakerMode = index }
    }
    Note {
        objectName: "transcript.modeNote"
        text: card.isDiarizing ? "Counts the people on camera, separates their voices, and labels them Speaker 1…N in order of appearance — automatically. Best when there's one mixed track instead of a mic per person."
            : card.isByFile ? "Add one audio file per person (e.g. ISO WAVs from the sound mixer). Each file = one speaker."
            : "Pick a clip with multiple audio channels (one mic per person), then name each below."
    }
    FormRow {
        visible: card.isDiarizing
        label: "Number of people"
        labelWidth: Theme.typedWidth
        // More than a dozen voices in one mix nobody tells apart.
        Picker { objectName: "transcript.people"; name: "Number of people"; labels: ["Auto (count faces)", ...Array.from({length: 12}, (_, index) => String(index + 1))]; currentIndex: card.people; onChosen: index => card.transcript.numSpeakers = index }
    }
    Note {
        objectName: "transcript.peopleNote"
        visible: card.isDiarizing
        text: card.people > 0 ? "Override: group everyone into exactly " + card.people + " speaker" + (card.people === 1 ? "" : "s") + "."
            : "Auto counts distinct faces in the footage to decide how many speakers there are. Override only if it gets the count wrong."
    }
    Notices {
        objectName: "transcript.diarization"
        lines: !card.isDiarizing || card.transcript.diarizeReady ? []
             : ["Diarization not set up — install with `python3 -m pip install --user sherpa-onnx numpy` and add the diarization models. (Slate/appearance still work.)"]
    }
    Note { objectName: "transcript.diarizationHere"; visible: card.isDiarizing && !card.transcript.diarizeReady; text: "On this system, Scripts/install-transcript sets up both: a python environment of its own, and the models in " + card.transcript.modelsFolder + "/diarization." }
    Column {
        visible: card.mode === TranscriptViewModel.SpeakerMode.iso && card.transcript.speakers.count > 0
        spacing: Theme.small
        Layout.fillWidth: true

        Repeater {
            model: card.transcript.speakers
            RowLayout {
                id: channel
                required property int index
                required property var model
                width: parent.width
                Toggle { objectName: "transcript.channel." + channel.index; text: "Ch " + (channel.index + 1); on: channel.model.isEnabled; Layout.maximumWidth: Theme.labelWidth; onSwitched: on => channel.model.isEnabled = on }
                InputField { objectName: "transcript.channelName." + channel.index; name: "Name of channel " + (channel.index + 1); placeholderText: "Name"; text: channel.model.name; onTextEdited: channel.model.name = text }
            }
        }
    }
    Column {
        visible: card.isByFile && card.transcript.fileTracks.count > 0
        spacing: Theme.small
        Layout.fillWidth: true

        Repeater {
            model: card.transcript.fileTracks
            FileRow {
                id: file
                required property int index
                required property var model
                objectName: "transcript.file." + index
                width: parent.width
                title: model.fileName
                symbol: "waveform"
                InputField { objectName: "transcript.fileName." + file.index; name: "Speaker in " + file.title; placeholderText: "Name"; text: file.model.name; Layout.fillWidth: false; Layout.preferredWidth: Theme.choiceWidth; onTextEdited: file.model.name = text }
                IconButton { objectName: "transcript.removeFile." + file.index; symbol: "minus.circle.fill"; text: "Remove " + file.title; color: Theme.danger; onClicked: card.transcript.removeFile(file.index) }
            }
        }
    }
    ActionButton { objectName: "transcript.addFiles"; visible: card.isByFile; text: "Add Audio Files…"; symbol: "plus"; onClicked: card.transcript.addFiles() }
}
