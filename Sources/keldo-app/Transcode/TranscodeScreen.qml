import QtQuick
import Keldo.Components
import Keldo.Support
import Keldo.Transcode

// A batch of clips, one preset, one look.
Page {
    id: screen

    required property Desktop desktop
    readonly property int clips: transcode.inputs.count

    objectName: "transcode.page"
    head: ActionButton {
        objectName: "transcode.new"
        visible: transcode.stage === TranscodeViewModel.Stage.finished
        text: "New Batch"
        symbol: "arrow.counterclockwise"
        onClicked: transcode.reset()
    }
    foot: ActionRow {
        objectName: "transcode.startRow"
        visible: transcode.stage === TranscodeViewModel.Stage.setup
        needs: !transcode.ffmpegAvailable ? "ffmpeg is missing."
             : screen.clips === 0 ? "No clips yet."
             : transcode.outputDir.path === "" ? "No destination yet." : ""

        DefaultButton {
            objectName: "transcode.start"
            text: "Transcode " + screen.clips + " clip" + (screen.clips === 1 ? "" : "s")
            symbol: "play.fill"
            enabled: transcode.canStart
            onClicked: transcode.start()
        }
    }

    TranscodeViewModel {
        id: transcode
        objectName: "transcode"
        desktop: screen.desktop
    }
    Card {
        objectName: "transcode.ffmpegCard"
        visible: !transcode.ffmpegAvailable
        title: "FFmpeg Required"
        systemImage: "exclamationmark.triangle.fill"
        tint: Theme.attention

        Note {
            objectName: "transcode.ffmpegText"
            font: Theme.body
            text: "Transcoding needs ffmpeg. Install it with `brew install ffmpeg` (or set the FFMPEG_PATH environment variable), then reopen Keldo. You can still configure a job and preview the command below."
        }
        NeedsFFmpeg {
            objectName: "transcode.ffmpeg"
        }
    }
    BatchView {
        visible: transcode.stage === TranscodeViewModel.Stage.setup
        transcode: transcode
    }
    ProgressCard {
        objectName: "transcode.running"
        visible: transcode.stage === TranscodeViewModel.Stage.running
        title: "Transcoding"
        phase: "Clip " + (transcode.currentIndex + 1) + " of " + transcode.inputs.count + ": " + transcode.currentName
        fraction: transcode.fraction
        cancelText: transcode.isCancelling ? "Cancelling…" : "Cancel"
        note: transcode.isCancelling ? "The clip under way is being closed so that it plays. Press again to stop at once; then it may not play."
            : transcode.isClosing ? "All pictures are done; the clip is being closed." : ""
        onCancelled: transcode.cancel()

        StatBadge { objectName: "transcode.speed"; visible: text !== ""; text: transcode.speed; symbol: "speedometer" }
        StatBadge { objectName: "transcode.fps"; visible: text !== ""; text: transcode.fps; symbol: "timer" }
        StatBadge { objectName: "transcode.done"; text: transcode.completed.count + " done"; symbol: "checkmark.circle" }
    }
    DoneCard {
        visible: transcode.stage === TranscodeViewModel.Stage.finished
        transcode: transcode
    }
}
