import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Recover
import Keldo.Support

// A card that mounts but holds damaged clips, or one that no longer mounts.
Page {
    id: screen

    required property Desktop desktop

    objectName: "recover.page"
    title: "Damaged Card / Clips"
    systemImage: "cross.case"
    head: ActionButton {
        objectName: "recover.new"
        visible: recover.hasScan
        text: "New Scan"
        symbol: "arrow.counterclockwise"
        onClicked: recover.reset()
    }

    RecoverViewModel {
        id: recover
        objectName: "recover"
        desktop: screen.desktop
    }
    Card {
        objectName: "recover.setupCard"
        visible: !recover.hasScan
        title: ""

        Note {
            objectName: "recover.intro"
            font: Theme.body
            text: "Plug in the card (or pick a folder) and scan. Finds clips whose header never closed — camera lost power mid-take — plus truncated files and broken WAVs. Repairs are written elsewhere; the card is never touched."
        }
        PathRow {
            objectName: "recover.card"
            path: recover.cardDir.name
            placeholder: "No card selected"
            buttonDescription: "Choose the card or folder to scan"
            onChosen: recover.chooseCard()
        }
        Notices {
            objectName: "recover.scanObjection"
            lines: recover.scanObjection === "" ? [] : [recover.scanObjection]
        }
        DefaultButton {
            objectName: "recover.scan"
            isNext: !carving.isNext
            text: recover.stage === RecoverViewModel.Stage.scanning ? "Scanning…" : "Scan for Damage"
            symbol: "stethoscope"
            enabled: recover.canScan
            Layout.alignment: Qt.AlignRight
            onClicked: recover.runScan()
        }
    }
    ResultsView {
        visible: recover.hasScan
        recover: recover
    }
    CarveCard {
        id: carving
        visible: !recover.hasScan
        recover: recover
    }
}
