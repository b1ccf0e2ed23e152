import QtQuick
import QtQuick.Layouts

// Text that can be copied, as a person must to send an error on.
TextEdit {
    color: Theme.primary
    font: Theme.body
    readOnly: true
    selectByMouse: true
    selectionColor: Theme.prominentBackground
    selectedTextColor: Theme.onProminent
    wrapMode: TextEdit.Wrap
    textFormat: TextEdit.PlainText
    horizontalAlignment: TextEdit.AlignLeft
    Layout.fillWidth: true
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
