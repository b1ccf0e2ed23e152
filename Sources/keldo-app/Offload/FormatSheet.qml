pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components
import Keldo.Offload

// The last barrier before an erase.
Sheet {
    id: sheet

    required property OffloadViewModel model

    onAboutToShow: typed.clear()
    onOpened: typed.forceActiveFocus()

    contentItem: Column {
        spacing: Theme.large

        SymbolLabel {
            objectName: "sheet.heading"
            text: "Erase the camera card?"
            symbol: "exclamationmark.triangle.fill"
            color: Theme.danger
            font: Theme.headline
            symbolSize: Theme.iconSize + 2
        }
        Text {
            objectName: "sheet.text"
            width: parent.width
            text: "This permanently erases the source card. Your footage is verified on "
                + (sheet.model.result?.driveCount ?? 0)
                + " drives, so this is safe — but it cannot be undone."
            color: Theme.primary
            font: Theme.body
            wrapMode: Text.Wrap
        }
        Rectangle {
            width: parent.width
            height: command.implicitHeight + 2 * Theme.small
            radius: Theme.smallRadius
            color: Theme.fieldBackground
            TextEdit {
                id: command
                objectName: "sheet.command"
                anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.small }
                text: sheet.model.formatCommand
                color: Theme.primary
                font: Theme.code
                readOnly: true
                selectByMouse: true
                activeFocusOnTab: false
                wrapMode: TextEdit.WrapAnywhere
                textFormat: TextEdit.PlainText
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
        Row {
            spacing: Theme.small
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: "Type"
                color: Theme.primary
                font: Theme.body
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: "ERASE"
                color: Theme.primary
                font: Theme.codeStrong
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: "to confirm"
                color: Theme.primary
                font: Theme.body
            }
            InputField {
                id: typed
                objectName: "sheet.typed"
                width: 160
                Accessible.name: "Type ERASE to confirm"
            }
        }
        Row {
            anchors.right: parent.right
            spacing: Theme.medium
            ActionButton {
                objectName: "sheet.cancel"
                implicitHeight: Theme.prominentHeight
                text: "Cancel"
                onClicked: sheet.close()
            }
            ActionButton {
                objectName: "sheet.erase"
                role: "destructive"
                text: "Erase Card"
                enabled: typed.text === "ERASE" && !sheet.model.isFormatting
                onClicked: {
                    sheet.close();
                    sheet.model.formatCard();
                }
            }
        }
    }
}
