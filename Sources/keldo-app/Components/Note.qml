import QtQuick
import QtQuick.Layouts

// A sentence or more; small and quiet unless told otherwise.
PlainText {
    color: Theme.secondary
    font: Theme.print
    wrapMode: Text.Wrap
    Layout.fillWidth: true
}
