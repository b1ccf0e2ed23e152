import QtQuick
import QtQuick.Controls.Basic
import Keldo.Components

ApplicationWindow {
    id: gallery

    readonly property var sections: ["Controls", "Rows", "Texts", "States", "Bare"]
    property int section: 0

    title: "Components"
    visible: true
    width: 940
    height: 680
    color: Theme.windowBackground

    header: Rectangle {
        implicitHeight: Theme.headerHeight
        color: Theme.windowBackground
        SegmentedControl {
            objectName: "section"
            name: "Section"
            anchors.centerIn: parent
            width: Theme.modeWidth
            labels: gallery.sections
            currentIndex: gallery.section
            onChosen: index => gallery.section = index
        }
    }
    Loader {
        anchors.fill: parent
        focus: true
        source: gallery.sections[gallery.section] + "Section.qml"
    }
}
