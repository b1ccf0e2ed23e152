pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components
import Keldo.Offload

Column {
    id: view

    required property OffloadViewModel model

    spacing: Theme.wide

    Card {
        objectName: "offload.sourceCard"
        title: "Source"
        systemImage: "sdcard"

        Item {
            width: parent.width
            height: choose.height
            PathField {
                objectName: "offload.source"
                width: parent.width - choose.width - Theme.tiny
                text: view.model.source.path || "No card selected"
                isPlaceholder: view.model.source.path === ""
            }
            ActionButton {
                id: choose
                objectName: "offload.choose"
                anchors.right: parent.right
                text: "Choose…"
                Accessible.description: "Choose the camera card"
                onClicked: view.model.chooseSource()
            }
        }
        SymbolLabel {
            objectName: "offload.scanning"
            visible: view.model.stage === OffloadViewModel.Stage.scanning
            text: "Scanning…"
            symbol: "magnifyingglass"
            color: Theme.secondary
        }
        Row {
            objectName: "offload.scan"
            visible: view.model.stage === OffloadViewModel.Stage.setup && view.model.scan !== undefined
            spacing: Theme.wide
            StatBadge {
                objectName: "offload.camera"
                text: view.model.scan?.camera ?? ""
                symbol: "camera"
            }
            StatBadge {
                objectName: "offload.fileCount"
                text: (view.model.scan?.fileCount ?? 0) + " files"
                symbol: "doc.on.doc"
            }
            StatBadge {
                objectName: "offload.total"
                text: view.model.scan?.total ?? ""
                symbol: "scalemass"
            }
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

        Row {
            width: parent.width
            spacing: Theme.medium
            PlainText {
                objectName: "offload.reel.label"
                width: Theme.labelWidth
                anchors.verticalCenter: parent.verticalCenter
                text: "Reel name"
            }
            InputField {
                objectName: "offload.reel"
                width: parent.width - Theme.labelWidth - Theme.medium
                text: view.model.reelName
                placeholderText: "A001_2026-06-06"
                Accessible.name: "Reel name"
                onTextEdited: view.model.reelName = text
            }
        }
        Row {
            spacing: Theme.medium
            PlainText {
                objectName: "offload.checksum.label"
                width: Theme.labelWidth
                anchors.verticalCenter: parent.verticalCenter
                text: "Checksum"
            }
            SegmentedControl {
                objectName: "offload.checksum"
                name: "Checksum"
                width: Theme.choiceWidth
                labels: view.model.algorithms
                currentIndex: view.model.algorithms.indexOf(view.model.algorithm)
                onChosen: index => view.model.algorithm = view.model.algorithms[index]
            }
        }
    }

    Item {
        width: parent.width
        height: start.height
        SymbolLabel {
            objectName: "offload.warning"
            anchors.verticalCenter: parent.verticalCenter
            visible: view.model.destinations.count === 1
            text: "One drive copies fine, but formatting stays locked until you add a second."
            symbol: "exclamationmark.triangle.fill"
            color: Theme.attention
            font: Theme.print
        }
        ActionButton {
            id: start
            objectName: "offload.start"
            anchors.right: parent.right
            role: "prominent"
            text: "Start Offload"
            symbol: "play.fill"
            enabled: view.model.canStart
            onClicked: view.model.start()
        }
    }
    Shortcut {
        sequences: ["Return", "Enter"]
        autoRepeat: false
        enabled: view.model.canStart
        onActivated: view.model.start()
    }
}
