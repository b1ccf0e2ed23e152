import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Support
import Keldo.Transcript

// One clip into a Word document of who says what.
Page {
    id: screen

    required property Desktop desktop
    readonly property bool isFinished: transcript.stage === TranscriptViewModel.Stage.finished

    function phaseLabel(phase, speaker) {
        const labels = {
            probing: "Reading timecode & tracks…",
            countingPeople: "Counting people on camera…",
            diarizing: "Separating speakers by voice…",
            extracting: "Extracting " + speaker + "…",
            transcribing: "Transcribing " + speaker + "…",
            merging: "Merging speakers by time…",
            writing: "Writing Word document…"
        };
        return labels[phase] ?? "Working…";
    }

    objectName: "transcript.page"
    head: ActionButton { objectName: "transcript.new"; visible: screen.isFinished; enabled: !transcript.isSaving; text: "New Transcript"; symbol: "arrow.counterclockwise"; onClicked: transcript.reset() }
    foot: ActionRow {
        objectName: "transcript.startRow"
        visible: setup.visible
        needs: !transcript.available ? "See “Setup Needed” above."
             : transcript.input.path === "" ? "No clip yet."
             : !transcript.hasVoices ? ["Diarization is not set up.", transcript.channelCount > 0 ? "No channel is on." : "This clip has no audio channels.", "No audio files yet."][transcript.speakerMode]
             : transcript.outputDir.path === "" ? "No output folder yet."
             : transcript.earlierDocument === "" ? "" : transcript.earlierDocument + " is there and will be replaced."

        DefaultButton { objectName: "transcript.start"; text: "Create Transcript"; symbol: "play.fill"; isNext: transcript.earlierDocument === ""; enabled: transcript.canStart; onClicked: transcript.start() }
    }
    onIsFinishedChanged: if (isFinished) attending.start()

    TranscriptViewModel { id: transcript; objectName: "transcript"; desktop: screen.desktop }
    Card {
        objectName: "transcript.needs"
        visible: setup.visible && !transcript.available
        title: "Setup Needed"
        systemImage: "exclamationmark.triangle.fill"
        tint: Theme.attention

        Note { objectName: "transcript.needsFFmpeg"; visible: !transcript.ffmpegReady; font: Theme.body; text: "ffmpeg not found — `brew install ffmpeg`." }
        NeedsFFmpeg { objectName: "transcript.ffmpeg"; visible: !transcript.ffmpegReady }
        Note { objectName: "transcript.needsWhisper"; visible: !transcript.whisperReady; font: Theme.body; text: "Whisper not ready — `brew install whisper-cpp` and place a model (e.g. ggml-base.en.bin) in ~/Library/Application Support/Keldo/models." }
        Note { objectName: "transcript.whisperHere"; visible: !transcript.whisperReady; text: "On this system, models are looked for in " + transcript.modelsFolder + ". A script in the folder of keldobay's sources sets up all that is needed:" }
        CodeBlock { objectName: "transcript.install"; visible: !transcript.whisperReady; text: "Scripts/install-transcript" }
        Note { objectName: "transcript.reopen"; text: "Then open this screen anew: choose another mode above, and Transcript again." }
    }
    SetupView { id: setup; visible: transcript.stage <= TranscriptViewModel.Stage.probing; transcript: transcript }
    Card {
        objectName: "transcript.running"
        visible: transcript.stage === TranscriptViewModel.Stage.running
        title: "Transcribing"
        systemImage: "arrow.triangle.2.circlepath"

        RowLayout {
            Busy { objectName: "transcript.phase"; text: screen.phaseLabel(transcript.progressPhase, transcript.progressSpeaker) }
            ActionButton { objectName: "transcript.cancel"; role: ActionButton.Role.Destructive; text: transcript.isCancelling ? "Cancelling…" : "Cancel"; symbol: "stop.fill"; onClicked: transcript.cancel() }
        }
        Note { objectName: "transcript.runningNote"; text: "Audio stays on this Mac — Whisper runs locally." }
        Note { objectName: "transcript.cancelNote"; visible: transcript.isCancelling; text: "It ends after the step under way. If all is transcribed already, the document is still written." }
    }
    FailureCard { id: failed; objectName: "transcript.failed"; visible: screen.isFinished && transcript.errorMessage !== ""; title: "Transcription Failed"; message: transcript.errorMessage }
    ResultView { id: result; visible: screen.isFinished && transcript.errorMessage === ""; transcript: transcript }
    // Once all that one change brings has come.
    Timer { id: attending; interval: 0; onTriggered: screen.attend(failed.visible ? failed : result.outcome) }
}
