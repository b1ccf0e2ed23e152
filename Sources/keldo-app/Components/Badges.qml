import QtQuick
import QtQuick.Layouts

// Small facts side by side.
Item {
    id: badges

    default property alias content: row.data

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    Layout.fillWidth: true

    RowLayout {
        id: row
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, badges.width)
        spacing: Theme.wide
    }
}
