pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

// The last barrier before an erase.
Sheet {
    id: sheet

    required property OffloadViewModel model

    title: "Erase the camera card?"
    symbol: "exclamationmark.triangle.fill"
    tint: Theme.danger
    onAboutToShow: typed.clear()
    onOpened: typed.forceActiveFocus()

    Note {
        objectName: "sheet.text"
        text: "This permanently erases the source card. Your footage is verified on "
            + (sheet.model.result?.driveCount ?? 0)
            + " drives, so this is safe — but it cannot be undone."
        color: Theme.primary
        font: Theme.body
    }
    Notices {
        objectName: "sheet.weakerProofs"
        lines: sheet.model.result?.weakerProofs ?? []
    }
    CodeBlock { objectName: "sheet.command"; visible: text !== ""; text: sheet.model.formatCommand }
    RowLayout {
        spacing: Theme.small
        PlainText { objectName: "sheet.word.type"; text: "Type" }
        PlainText { objectName: "sheet.word.erase"; text: "ERASE"; font: Theme.codeStrong }
        PlainText { objectName: "sheet.word.confirm"; text: "to confirm" }
        InputField {
            id: typed
            objectName: "sheet.typed"
            name: "Type ERASE to confirm"
            Layout.fillWidth: false
        }
    }
    RowLayout {
        spacing: Theme.medium
        Layout.fillWidth: false
        Layout.alignment: Qt.AlignRight
        ActionButton {
            objectName: "sheet.cancel"
            text: "Cancel"
            Layout.preferredHeight: Theme.prominentHeight
            onClicked: sheet.close()
        }
        ActionButton {
            objectName: "sheet.erase"
            role: ActionButton.Role.Destructive
            text: "Erase Card"
            enabled: typed.text === "ERASE" && !sheet.model.isFormatting
            onClicked: {
                sheet.close();
                sheet.model.formatCard();
            }
        }
    }
}
