import QtQuick
import QtQuick.Layouts

// Buttons at the trailing edge, and before them why the main one can't be pressed.
RowLayout {
    id: row

    property string needs: ""

    spacing: Theme.medium

    Note {
        objectName: row.objectName + ".needs"
        horizontalAlignment: Text.AlignRight
        text: row.needs
    }
}
