import QtQuick
import QtQuick.Layouts

// A sentence with a symbol in its colour. It can be copied.
RowLayout {
    id: notice

    required property string text
    property string symbol: "exclamationmark.triangle.fill"
    property color color: Theme.attention
    property font font: Theme.print

    spacing: Theme.small

    Symbol {
        name: notice.symbol
        color: notice.color
        Layout.alignment: Qt.AlignTop
    }
    SelectableText {
        text: notice.text
        color: notice.color
        font: notice.font
    }
}
