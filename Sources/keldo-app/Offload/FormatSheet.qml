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
        PlainText {
            objectName: "sheet.text"
            width: parent.width
            text: "This permanently erases the source card. Your footage is verified on "
                + (sheet.model.result?.driveCount ?? 0)
                + " drives, so this is safe — but it cannot be undone."
            wrapMode: Text.Wrap
        }
        AttentionLines {
            objectName: "sheet.weakerProofs"
            lines: sheet.model.result?.weakerProofs ?? []
        }
        Rectangle {
            visible: command.text !== ""
            width: parent.width
            height: command.implicitHeight + 2 * Theme.small
            radius: Theme.smallRadius
            color: Theme.fieldBackground
            SelectableText {
                id: command
                objectName: "sheet.command"
                anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.small }
                text: sheet.model.formatCommand
                font: Theme.code
            }
        }
        Row {
            spacing: Theme.small
            PlainText {
                objectName: "sheet.word.type"
                anchors.verticalCenter: parent.verticalCenter
                text: "Type"
            }
            PlainText {
                objectName: "sheet.word.erase"
                anchors.verticalCenter: parent.verticalCenter
                text: "ERASE"
                font: Theme.codeStrong
            }
            PlainText {
                objectName: "sheet.word.confirm"
                anchors.verticalCenter: parent.verticalCenter
                text: "to confirm"
            }
            InputField {
                id: typed
                objectName: "sheet.typed"
                width: Theme.typedWidth
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
