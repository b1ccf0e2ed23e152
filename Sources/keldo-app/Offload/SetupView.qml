pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

// The card, the drives, and how they are copied.
ColumnLayout {
    id: view

    required property OffloadViewModel model

    // The keyboard goes on where the row was.
    function remove(row, byKeyboard) {
        model.removeDestination(row);
        if (byKeyboard)
            (drives.itemAt(Math.min(row, drives.count - 1))?.button ?? add).forceActiveFocus(Qt.TabFocusReason);
    }

    spacing: Theme.wide

    Card {
        objectName: "offload.sourceCard"
        title: "Source"
        systemImage: "sdcard"

        PathRow {
            objectName: "offload.source"
            path: view.model.source.path
            placeholder: "No card selected"
            buttonDescription: "Choose the camera card"
            onChosen: view.model.chooseSource()
        }
        SymbolLabel { objectName: "offload.scanning"; visible: view.model.stage === OffloadViewModel.Stage.scanning; text: "Scanning…"; symbol: "magnifyingglass"; color: Theme.secondary }
        Badges {
            objectName: "offload.scan"
            visible: view.model.stage === OffloadViewModel.Stage.setup && view.model.scan !== undefined
            StatBadge { objectName: "offload.camera"; text: view.model.scan?.camera ?? ""; symbol: "camera" }
            StatBadge { objectName: "offload.fileCount"; text: (view.model.scan?.fileCount ?? 0) + " files"; symbol: "doc.on.doc" }
            StatBadge { objectName: "offload.total"; text: view.model.scan?.total ?? ""; symbol: "scalemass" }
        }
    }
    Card {
        objectName: "offload.drivesCard"
        title: "Backup Drives"
        systemImage: "externaldrive"

        Note {
            objectName: "offload.nodrives"
            visible: drives.count === 0
            text: "Add at least two drives for a safe, format-eligible offload."
            font: Theme.body
        }
        Column {
            id: rows
            visible: drives.count > 0
            spacing: Theme.medium
            Layout.fillWidth: true

            Repeater {
                id: drives
                model: view.model.destinations

                FileRow {
                    id: drive

                    required property int index
                    required property string name
                    required property string path
                    readonly property alias button: remove

                    objectName: "offload.drive." + index
                    width: rows.width
                    title: name
                    detail: path
                    symbol: "externaldrive.fill"

                    IconButton {
                        id: remove
                        objectName: "offload.remove." + drive.index
                        symbol: "minus.circle.fill"
                        text: "Remove " + drive.title
                        color: Theme.danger
                        onClicked: view.remove(drive.index, visualFocus)
                    }
                }
            }
        }
        ActionButton {
            id: add
            objectName: "offload.add"
            text: "Add Drive…"
            symbol: "plus"
            onClicked: view.model.addDestination()
        }
    }
    Card {
        objectName: "offload.optionsCard"
        title: "Options"
        systemImage: "slider.horizontal.3"

        FormRow {
            objectName: "offload.reelRow"
            label: "Reel name"
            InputField {
                objectName: "offload.reel"
                name: "Reel name"
                text: view.model.reelName
                placeholderText: "A001_2026-06-06"
                onTextEdited: view.model.reelName = text
            }
        }
        FormRow {
            objectName: "offload.checksumRow"
            label: "Checksum"
            SegmentedControl {
                objectName: "offload.checksum"
                name: "Checksum"
                labels: view.model.algorithms
                currentIndex: view.model.algorithmIndex
                onChosen: index => view.model.algorithmIndex = index
            }
        }
    }
}
