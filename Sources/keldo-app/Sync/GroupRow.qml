import QtQuick
import QtQuick.Layouts
import Keldo.Components

// A clip with the recording that covers most of it.
ColumnLayout {
    id: row

    required property string video
    required property string timecode
    required property string sound
    required property string meta
    required property string coverage
    required property string others

    spacing: Theme.tiny

    StatusRow {
        objectName: row.objectName + ".video"
        title: row.video
        titleFont: Theme.emphasis
        symbol: "film"
        color: Theme.secondary
        trailing: row.timecode
    }
    StatusRow {
        objectName: row.objectName + ".sound"
        visible: row.sound !== ""
        title: row.sound
        symbol: "waveform"
        color: Theme.accent
        detail: row.meta
        trailing: row.coverage
    }
    Note {
        objectName: row.objectName + ".none"
        visible: row.sound === ""
        text: "no matching audio"
        Layout.leftMargin: Theme.huge
    }
    Note {
        objectName: row.objectName + ".others"
        visible: row.others !== ""
        text: row.others
        Layout.leftMargin: Theme.huge
    }
}
