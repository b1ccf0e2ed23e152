import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Support
import Keldo.Sync

// One day's picture and sound, grouped by time of day, and what is made of the groups.
Page {
    id: screen

    required property Desktop desktop

    objectName: "sync.page"
    head: ActionButton {
        objectName: "sync.new"
        visible: sync.stage === SyncViewModel.Stage.results || sync.stage === SyncViewModel.Stage.muxing
        text: "New Scan"
        symbol: "arrow.counterclockwise"
        onClicked: sync.reset()
    }

    SyncViewModel {
        id: sync
        objectName: "sync"
        desktop: screen.desktop
    }
    FailureCard {
        objectName: "sync.failed"
        visible: sync.errorMessage !== ""
        title: "Scan Failed"
        message: sync.errorMessage
    }
    ColumnLayout {
        visible: !sync.hasResult
        spacing: Theme.wide

        Note {
            objectName: "sync.intro"
            text: "Point at a folder of camera clips and sound-recorder WAVs. keldobay matches them by time-of-day timecode (and reads scene/take/track names from the BWF/iXML)."
        }
        Card {
            objectName: "sync.mediaCard"
            title: "Day's Media"
            systemImage: "calendar.badge.clock"

            PathRow {
                objectName: "sync.media"
                path: sync.mediaDir.path
                placeholder: "No folder selected"
                buttonDescription: "Choose the day's media folder"
                onChosen: sync.chooseMediaDir()
            }
        }
        NeedsFFmpeg {
            objectName: "sync.ffmpeg"
            visible: !sync.ffmpegReady
            reason: "Without ffmpeg no camera clip can be read:"
        }
        DefaultButton {
            objectName: "sync.scan"
            text: sync.stage === SyncViewModel.Stage.scanning ? "Scanning…" : "Scan & Group"
            symbol: "wand.and.stars"
            enabled: sync.canScan
            Layout.alignment: Qt.AlignRight
            onClicked: sync.scan()
        }
        Busy {
            objectName: "sync.scanning"
            visible: sync.stage === SyncViewModel.Stage.scanning
            text: "Reading clips and recordings"
        }
    }
    GroupsView {
        visible: sync.hasResult
        sync: sync
    }
}
