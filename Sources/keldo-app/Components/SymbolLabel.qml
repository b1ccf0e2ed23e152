import QtQuick
import QtQuick.Layouts

// A symbol and a line of text beside it, cut in the middle where there is too little room.
Item {
    id: label

    required property string text
    property string symbol: ""
    property string trailingSymbol: ""
    property bool isCentred: false
    property color color: Theme.primary
    property font font: Theme.body
    property int symbolSize: Theme.iconSize
    property real spacing: Theme.small

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    Layout.fillWidth: true
    Layout.minimumWidth: Math.min(implicitWidth, Theme.labelWidth)

    RowLayout {
        id: row
        anchors { verticalCenter: parent.verticalCenter; horizontalCenter: label.isCentred ? parent.horizontalCenter : undefined }
        width: Math.min(implicitWidth, label.width)
        spacing: label.spacing

        Symbol {
            visible: label.symbol !== ""
            name: label.symbol
            color: label.color
            size: label.symbolSize
        }
        NameText {
            visible: label.text !== ""
            name: label.text
            color: label.color
            font: label.font
            Layout.preferredWidth: Math.ceil(implicitWidth)
        }
        Symbol {
            visible: label.trailingSymbol !== ""
            name: label.trailingSymbol
            color: label.color
            size: Theme.regular
        }
    }
}
