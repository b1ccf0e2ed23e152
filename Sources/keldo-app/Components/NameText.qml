import QtQuick
import QtQuick.Layouts
import Keldo.Components

// A name or a path on one line, cut in the middle.
PlainText {
    required property string name

    text: PlainName.oneLine(name)
    elide: Text.ElideMiddle
    maximumLineCount: 1
    Layout.fillWidth: true
}
