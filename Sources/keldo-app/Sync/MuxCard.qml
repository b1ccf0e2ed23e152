import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Sync

// Clips with the sound in them.
Card {
    id: card

    required property SyncViewModel sync

    objectName: "sync.muxCard"
    title: "Create Synced Clips"
    systemImage: "square.and.arrow.down.on.square"

    Note {
        objectName: "sync.muxNeeds"
        visible: !card.sync.ffmpegReady
        font: Theme.body
        text: "ffmpeg required to mux audio."
    }
    NeedsFFmpeg {
        objectName: "sync.muxFFmpeg"
        visible: !card.sync.ffmpegReady
    }
    Note {
        objectName: "sync.muxNote"
        visible: card.sync.ffmpegReady
        text: "Writes one .mov per clip with the matched sound aligned to picture (video copied, no re-encode)."
    }
    PathRow {
        objectName: "sync.output"
        visible: card.sync.ffmpegReady
        path: card.sync.outputDir.path
        placeholder: "No folder selected"
        buttonDescription: "Choose where to write synced clips"
        onChosen: card.sync.chooseOutput()
    }
    Busy {
        objectName: "sync.muxing"
        visible: card.sync.stage === SyncViewModel.Stage.muxing
        text: "Muxing " + card.sync.muxDone + "/" + card.sync.syncedCount + "…"
    }
    ActionButton {
        objectName: "sync.mux"
        visible: card.sync.ffmpegReady && card.sync.stage !== SyncViewModel.Stage.muxing
        role: card.sync.muxStatus === "" ? ActionButton.Role.Prominent : ActionButton.Role.Plain
        text: "Create " + card.sync.syncedCount + " Synced Clip" + (card.sync.syncedCount === 1 ? "" : "s")
        symbol: "link"
        enabled: card.sync.canMux
        Layout.alignment: Qt.AlignRight
        onClicked: card.sync.mux()
    }
    RowLayout {
        visible: card.sync.muxStatus !== ""
        spacing: Theme.medium
        Note {
            objectName: "sync.muxStatus"
            horizontalAlignment: Text.AlignRight
            text: card.sync.muxStatus
        }
        ActionButton {
            objectName: "sync.reveal"
            text: "Reveal"
            symbol: "folder"
            onClicked: card.sync.reveal()
        }
    }
    Notices {
        objectName: "sync.muxShortened"
        lines: card.sync.muxShortened === "" ? [] : [card.sync.muxShortened]
    }
}
