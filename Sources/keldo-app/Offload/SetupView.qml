import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

ColumnLayout {
    id: view

    required property OffloadViewModel model
    readonly property var algorithms: model.algorithms

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
        SymbolLabel {
            objectName: "offload.scanning"
            visible: view.model.stage === OffloadViewModel.Stage.scanning
            text: "Scanning…"
            symbol: "magnifyingglass"
            color: Theme.secondary
        }
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

        DriveList {
            model: view.model
            onEmptied: add.forceActiveFocus(Qt.TabFocusReason)
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
                labels: view.algorithms
                currentIndex: view.algorithms.indexOf(view.model.algorithm)
                onChosen: index => view.model.algorithm = view.algorithms[index]
            }
        }
    }
    RowLayout {
        SymbolLabel {
            objectName: "offload.warning"
            visible: view.model.destinations.count === 1
            text: "One drive copies fine, but formatting stays locked until you add a second."
            symbol: "exclamationmark.triangle.fill"
            color: Theme.attention
            font: Theme.print
        }
        ActionButton {
            objectName: "offload.start"
            role: ActionButton.Role.Prominent
            text: "Start Offload"
            symbol: "play.fill"
            enabled: view.model.canStart
            Layout.alignment: Qt.AlignRight
            onClicked: view.model.start()
        }
    }
    DefaultAction {
        enabled: view.model.canStart
        onActivated: view.model.start()
    }
}
