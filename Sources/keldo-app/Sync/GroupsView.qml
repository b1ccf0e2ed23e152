pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Sync

// The groups of a day, and what can be made of them.
ColumnLayout {
    id: view

    required property SyncViewModel sync

    spacing: Theme.wide

    Card {
        objectName: "sync.groupedCard"
        title: "Grouped"
        systemImage: "rectangle.3.group"

        SymbolLabel {
            objectName: "sync.counts"
            text: view.sync.groups.count + " clips · " + view.sync.syncedCount + " synced · "
                + view.sync.unmatchedAudio.count + " audio unmatched"
            symbol: "link"
        }
        ActionButton {
            objectName: "sync.save"
            text: "Save Report (PDF + CSV)…"
            symbol: "doc.text"
            Layout.alignment: Qt.AlignRight
            onClicked: view.sync.saveReport()
        }
        Note {
            objectName: "sync.reportStatus"
            horizontalAlignment: Text.AlignRight
            visible: text !== ""
            text: view.sync.reportStatus
        }
    }
    Card {
        objectName: "sync.groupsCard"
        title: "Sync Groups"
        systemImage: "film.stack"

        BoundedList {
            id: groups
            objectName: "sync.groups"
            name: "Sync Groups"
            bound: Theme.longListHeight
            spacing: Theme.medium
            model: view.sync.groups
            delegate: GroupRow {
                required property int index
                objectName: "sync.group." + index
                width: groups.rowWidth
            }
        }
        Note {
            objectName: "sync.coverageNote"
            visible: view.sync.syncedCount > 0
            text: "The percentage tells how much of the clip the recording covers."
        }
    }
    Card {
        objectName: "sync.unmatchedCard"
        visible: view.sync.unmatchedAudio.count > 0
        title: "Unmatched Audio"
        systemImage: "waveform.slash"

        BoundedList {
            id: unmatched
            objectName: "sync.unmatched"
            name: "Unmatched Audio"
            model: view.sync.unmatchedAudio
            delegate: StatusRow {
                required property int index
                required property string name
                objectName: "sync.unmatched." + index
                width: unmatched.rowWidth
                title: name
                symbol: "waveform"
                color: Theme.secondary
            }
        }
    }
    Card {
        objectName: "sync.editorialCard"
        title: "Send to Editorial"
        systemImage: "arrowshape.turn.up.right"

        Note {
            objectName: "sync.editorialNote"
            text: "Export the sync as project XML the editor imports directly — FCPXML for Resolve / Premiere / Final Cut, ALE (scene/take/sound roll) for Avid. No re-encoding; relinks to your media."
        }
        ActionButton {
            objectName: "sync.export"
            text: "Export FCPXML + ALE…"
            symbol: "square.and.arrow.down"
            Layout.alignment: Qt.AlignRight
            onClicked: view.sync.exportEditorial()
        }
        Note {
            objectName: "sync.exportStatus"
            horizontalAlignment: Text.AlignRight
            visible: text !== ""
            text: view.sync.exportStatus
        }
    }
    MuxCard {
        sync: view.sync
    }
}
