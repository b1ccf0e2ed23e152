import QtQuick

// A path on one line, cut in the middle, or a placeholder where there is none.
Rectangle {
    id: field

    required property string text
    property bool isPlaceholder: false

    implicitWidth: parent ? parent.width : 0
    implicitHeight: Theme.fieldHeight
    color: Theme.fieldBackground
    radius: Theme.smallRadius

    PlainText {
        objectName: field.objectName + ".text"
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: Theme.small }
        text: field.text
        color: field.isPlaceholder ? Theme.secondary : Theme.primary
        font: Theme.code
        elide: Text.ElideMiddle
        maximumLineCount: 1
    }
}
