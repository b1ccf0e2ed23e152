import QtQuick
import QtQuick.Layouts

// What is missing without ffmpeg, and how this system gets it.
ColumnLayout {
    id: needs

    property string reason: "On this system:"

    spacing: Theme.tiny

    Note {
        text: needs.reason
    }
    CodeBlock {
        objectName: needs.objectName + ".command"
        text: "sudo apt install ffmpeg"
    }
}
