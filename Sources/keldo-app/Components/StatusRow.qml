import QtQuick
import QtQuick.Layouts

// What became of one thing: its name in a colour, at will a sentence and a path below and a word at
// the trailing edge, and whatever else a row needs behind it.
RowLayout {
    id: row

    required property string title
    property string symbol: ""
    property color color: Theme.primary
    property color titleColor: Theme.primary
    property font titleFont: Theme.body
    property int symbolSize: Theme.iconSize
    property string detail: ""
    property string path: ""
    property string trailing: ""

    spacing: Theme.small
    clip: true

    Symbol {
        visible: row.symbol !== ""
        name: row.symbol
        color: row.color
        size: row.symbolSize
        Layout.alignment: row.detail === "" ? Qt.AlignVCenter : Qt.AlignTop
    }
    ColumnLayout {
        spacing: 0
        NameText {
            objectName: row.objectName + ".title"
            name: row.title
            color: row.titleColor
            font: row.titleFont
        }
        Note {
            objectName: row.objectName + ".detail"
            visible: text !== ""
            text: row.detail
        }
        NameText {
            objectName: row.objectName + ".path"
            visible: name !== ""
            name: row.path
            color: Theme.secondary
            font: Theme.print
        }
    }
    PlainText {
        objectName: row.objectName + ".trailing"
        visible: text !== ""
        text: row.trailing
        color: row.color
        font: Theme.print
    }
}
