import QtQuick
import QtQuick.Layouts

// A path on one line, cut in the middle, or what is said while there is none; and the button that
// chooses it.
RowLayout {
    id: row

    required property string path
    required property string placeholder
    property string buttonText: "Choose…"
    property string buttonDescription: ""
    readonly property string text: path || placeholder

    signal chosen

    spacing: Theme.tiny

    Rectangle {
        implicitWidth: Theme.choiceWidth
        implicitHeight: Theme.fieldHeight
        Layout.fillWidth: true
        color: Theme.fieldBackground
        radius: Theme.smallRadius

        NameText {
            objectName: row.objectName + ".text"
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: Theme.small }
            name: row.text
            color: row.path === "" ? Theme.secondary : Theme.primary
            font: Theme.code
        }
    }
    ActionButton {
        objectName: row.objectName + ".choose"
        text: row.buttonText
        details: row.buttonDescription
        onClicked: row.chosen()
    }
}
