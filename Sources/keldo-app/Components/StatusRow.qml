import QtQuick
import QtQuick.Layouts

// What became of one thing: its name in a colour, at will a sentence below and a word at the
// trailing edge, and whatever else a row needs behind it.
RowLayout {
    id: row

    required property string title
    property string symbol: ""
    property color color: Theme.primary
    property color titleColor: Theme.primary
    property font titleFont: Theme.body
    property int symbolSize: Theme.iconSize
    property string detail: ""
    property bool detailIsName: false
    property string trailing: ""

    spacing: Theme.small
    clip: true

    Symbol {
        visible: row.symbol !== ""
        name: row.symbol
        color: row.color
        size: row.symbolSize
        Layout.alignment: row.detailIsName ? Qt.AlignVCenter : Qt.AlignTop
    }
    ColumnLayout {
        spacing: 0
        NameText {
            objectName: row.objectName + ".title"
            name: row.title
            color: row.titleColor
            font: row.titleFont
        }
        NameText {
            objectName: row.objectName + ".detail"
            visible: row.detailIsName && row.detail !== ""
            name: row.detail
            color: Theme.secondary
            font: Theme.print
        }
        Note {
            objectName: row.objectName + ".detail"
            visible: !row.detailIsName && row.detail !== ""
            text: row.detail
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
