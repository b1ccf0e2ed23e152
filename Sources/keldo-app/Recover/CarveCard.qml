pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Recover

// Clips out of the image of a card whose file system is gone.
Card {
    id: card

    required property RecoverViewModel recover
    readonly property int carveStage: recover.carveStage
    readonly property bool isScanned: carveStage >= RecoverViewModel.CarveStage.found
    readonly property bool isBusy: carveStage === RecoverViewModel.CarveStage.scanning
                                || carveStage === RecoverViewModel.CarveStage.extracting
    readonly property bool isDone: carveStage === RecoverViewModel.CarveStage.done
    // An image was chosen, and not all has been done with it.
    readonly property bool isNext: recover.imageURL.path !== "" && !isDone && !nothing.visible

    objectName: "recover.carveCard"
    title: "Card Won't Mount?"
    systemImage: "externaldrive.badge.xmark"

    Note {
        objectName: "recover.carveIntro"
        font: Theme.body
        text: "If the card no longer mounts — filesystem corrupted, or a previous \"repair\" scrambled the directory — the footage is usually still in the raw sectors. Image the card once, then carve clips straight out of the image. The card itself is never written to."
    }
    Disclosure {
        objectName: "recover.imaging"
        title: "How to image the card (one-time, in Terminal)"

        CodeBlock {
            objectName: "recover.imagingText"
            text: "1.  diskutil list external   ← find the card's disk number BY SIZE (e.g. disk4)\n"
                + "2.  If macOS offers to initialize or repair it: CANCEL.\n"
                + "3.  sudo /opt/homebrew/bin/ddrescue -d -r3 /dev/rdisk4 ~/card.img ~/card.map\n"
                + "4.  Pick ~/card.img below. If the card never appears in diskutil at all,\n"
                + "    the controller is dead — that's professional (chip-off) recovery."
        }
        Note {
            objectName: "recover.imagingHere"
            text: "On this system: sudo apt install gddrescue; find the card by its size with lsblk (e.g. sdb, and not its partition sdb1); sudo ddrescue -d -r3 /dev/sdb ~/card.img ~/card.map"
        }
    }
    PathRow {
        objectName: "recover.image"
        path: card.recover.imageURL.name
        placeholder: "No image selected"
        buttonText: "Choose Image"
        onChosen: card.recover.chooseImage()
    }
    DefaultButton {
        objectName: "recover.scanImage"
        isNext: card.isNext && !card.isScanned
        text: card.carveStage === RecoverViewModel.CarveStage.scanning ? "Scanning…" : "Scan Image"
        symbol: "magnifyingglass"
        enabled: card.recover.imageURL.path !== "" && !card.isBusy
        Layout.alignment: Qt.AlignRight
        onClicked: card.recover.scanImage()
    }
    ProgressLine {
        objectName: "recover.carveProgress"
        visible: card.carveStage === RecoverViewModel.CarveStage.scanning
        name: "Scanning the image"
        value: card.recover.carveProgress
    }
    SymbolLabel {
        id: nothing
        objectName: "recover.nothingFound"
        visible: card.isScanned && card.recover.findings.count === 0
        text: "No media signatures found in the image."
        symbol: "questionmark.circle"
    }
    Notices {
        objectName: "recover.carveTrouble"
        lines: card.recover.carveTrouble === "" ? [] : [card.recover.carveTrouble]
    }
    BoundedList {
        id: findings
        objectName: "recover.findings"
        name: "Found in the image"
        bound: Theme.longListHeight
        visible: card.isScanned && count > 0
        model: card.recover.findings
        delegate: StatusRow {
            required property int index
            required property string label
            objectName: "recover.finding." + index
            width: findings.rowWidth
            title: label
            symbol: "doc.badge.gearshape"
            color: Theme.secondary
        }
    }
    RepairPlaces {
        objectName: "recover.carvePlaces"
        visible: findings.visible
        recover: card.recover
    }
    Notices {
        objectName: "recover.carveObjection"
        lines: card.recover.carveObjection === "" ? [] : [card.recover.carveObjection]
    }
    Busy {
        objectName: "recover.carving"
        visible: card.carveStage === RecoverViewModel.CarveStage.extracting
        text: "Carving " + card.recover.carveOutcomes.count + "/" + card.recover.findings.count
    }
    ActionRow {
        objectName: "recover.carveRow"
        visible: findings.visible && card.carveStage !== RecoverViewModel.CarveStage.extracting
        needs: card.isDone ? "All is carved. To carve again, scan the image again."
             : card.recover.outputDir.path === "" ? "No output folder yet." : ""

        DefaultButton {
            objectName: "recover.carve"
            isNext: !card.isDone
            text: "Carve " + card.recover.findings.count + " Item" + (card.recover.findings.count === 1 ? "" : "s")
            symbol: "scissors"
            enabled: card.recover.canCarve
            onClicked: card.recover.extractAll()
        }
    }
    OutcomeList {
        objectName: "recover.carved"
        name: "Carved"
        model: card.recover.carveOutcomes
    }
    ActionButton {
        objectName: "recover.carvedReveal"
        visible: card.recover.carveOutcomes.count > 0
        text: "Reveal"
        symbol: "folder"
        Layout.alignment: Qt.AlignRight
        onClicked: card.recover.reveal()
    }
}
