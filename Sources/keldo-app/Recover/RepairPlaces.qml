import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Recover

// The healthy clip that repairs go by, and where they are written.
ColumnLayout {
    id: places

    required property RecoverViewModel recover

    spacing: Theme.medium

    Note {
        objectName: places.objectName + ".referenceNote"
        font: Theme.body
        text: "Reference clip (for clips missing their index — a healthy clip from the same camera & settings):"
    }
    PathRow {
        objectName: places.objectName + ".reference"
        path: places.recover.reference.name
        placeholder: "None — auto-picks the largest healthy clip"
        buttonDescription: "Choose the reference clip"
        onChosen: places.recover.chooseReference()
    }
    Notices {
        objectName: places.objectName + ".needsReference"
        lines: places.recover.needsReference
             ? ["A clip is missing its index and no healthy clip was found on the card — pick a reference from another card shot on the same camera."]
             : []
    }
    Note {
        objectName: places.objectName + ".outputNote"
        font: Theme.body
        text: "Folder for the recovered clips:"
    }
    PathRow {
        objectName: places.objectName + ".output"
        path: places.recover.outputDir.name
        placeholder: "No output folder"
        buttonDescription: "Choose where to write recovered clips"
        onChosen: places.recover.chooseOutput()
    }
}
