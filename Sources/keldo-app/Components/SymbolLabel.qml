import QtQuick

// A symbol and a line of text beside it.
Row {
    id: label

    required property string text
    required property string symbol
    property color color: Theme.primary
    property font font: Theme.body
    property int symbolSize: Theme.iconSize
    property real maximumWidth: Infinity

    spacing: Theme.small

    Symbol {
        name: label.symbol
        color: label.color
        size: label.symbolSize
        anchors.verticalCenter: parent.verticalCenter
    }
    PlainText {
        text: label.text
        color: label.color
        font: label.font
        width: Math.min(implicitWidth, label.maximumWidth - label.symbolSize - label.spacing)
        elide: Text.ElideMiddle
        anchors.verticalCenter: parent.verticalCenter
    }
}
