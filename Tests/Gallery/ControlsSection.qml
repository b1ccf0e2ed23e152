import QtQuick
import QtQuick.Layouts
import Keldo.Components

Page {
    id: page

    property string last: "nothing yet"
    property int returns: 0
    property int segment: 1
    property int picked: 1
    property bool on: true
    property real count: 3
    property real hours: 3
    property real rate: 100

    readonly property string longLabel: "A label that is much longer than the place it is shown in can ever be, so that it has to be cut"

    objectName: "page"
    title: "Controls"
    systemImage: "slider.horizontal.3"
    head: ActionButton {
        objectName: "head"
        text: "Head"
        symbol: "arrow.counterclockwise"
        onClicked: page.last = "head"
    }

    Note {
        objectName: "last"
        text: page.last
        color: Theme.primary
    }
    Card {
        objectName: "buttons"
        title: "Buttons"
        RowLayout {
            Layout.fillWidth: false
            spacing: Theme.medium
            ActionButton { objectName: "plain"; text: "Plain"; onClicked: page.last = "plain" }
            ActionButton { objectName: "symbol"; text: "With Symbol"; symbol: "plus" }
            ActionButton { objectName: "prominent"; text: "Prominent"; symbol: "play.fill"; role: ActionButton.Role.Prominent; onClicked: page.last = "prominent" }
            ActionButton { objectName: "destructive"; text: "Destructive"; symbol: "trash.fill"; role: ActionButton.Role.Destructive }
            IconButton { objectName: "icon"; symbol: "minus.circle.fill"; text: "Remove it"; color: Theme.danger; onClicked: page.last = "icon" }
        }
        RowLayout {
            Layout.fillWidth: false
            spacing: Theme.medium
            ActionButton { objectName: "plain.off"; text: "Plain"; enabled: false; onClicked: page.last = "disabled" }
            ActionButton { objectName: "prominent.off"; text: "Prominent"; symbol: "play.fill"; role: ActionButton.Role.Prominent; enabled: false }
            ActionButton { objectName: "destructive.off"; text: "Destructive"; role: ActionButton.Role.Destructive; enabled: false }
            IconButton { objectName: "icon.off"; symbol: "minus.circle.fill"; text: "Remove it"; enabled: false }
        }
        ActionButton {
            objectName: "long"
            text: page.longLabel
            Layout.preferredWidth: 240
        }
        RowLayout {
            Layout.fillWidth: false
            spacing: Theme.medium
            MenuButton {
                objectName: "menu"
                text: "Download more…"
                labels: ["base.en  (~142 MB, fast)", "small.en  (~466 MB, more accurate)", "medium.en  (~1.5 GB, best)"]
                onChosen: index => page.last = "menu " + index
            }
            ActionButton {
                objectName: "opener"
                text: "Open Sheet"
                onClicked: sheet.open()
            }
        }
    }
    Card {
        objectName: "choices"
        title: "Choices"
        FormRow {
            label: "Segments"
            SegmentedControl {
                objectName: "segments"
                name: "Segments"
                labels: ["One", "Two", "Three"]
                currentIndex: page.segment
                onChosen: index => page.segment = index
            }
        }
        FormRow {
            label: "Disabled"
            SegmentedControl { objectName: "segments.off"; name: "Off"; labels: ["One", "Two"]; currentIndex: 0; enabled: false }
        }
        FormRow {
            label: "Grouped"
            Picker {
                objectName: "picker"
                name: "Preset"
                labels: ["ProRes 422 HQ", "ProRes 422", "DNxHR HQ", page.longLabel]
                groups: ["Resolve", "Resolve", "Avid", "Avid"]
                currentIndex: page.picked
                Layout.maximumWidth: Theme.choiceWidth
                onChosen: index => page.picked = index
            }
        }
        FormRow {
            label: "Disabled"
            Picker { objectName: "picker.off"; name: "Off"; labels: ["Nothing to choose"]; currentIndex: 0; enabled: false }
        }
        FormRow {
            label: "Refuses"
            Picker { objectName: "picker.stubborn"; name: "Stubborn"; labels: ["Stays", "Never"]; currentIndex: 0 }
        }
        Toggle { objectName: "toggle"; text: "Read the slate"; on: page.on; onSwitched: on => page.on = on }
        Toggle { objectName: "toggle.stubborn"; text: "Stays off"; on: false }
        Toggle { objectName: "toggle.off"; text: "Disabled and on"; on: true; enabled: false }
    }
    Card {
        objectName: "numbers"
        title: "Numbers and Texts"
        FormRow {
            label: "Cameras"
            Stepper { objectName: "cameras"; name: "Cameras"; value: page.count; from: 1; to: 8; onEdited: value => page.count = value }
        }
        FormRow {
            label: "Recorded hours / camera / day"
            Stepper { objectName: "hours"; name: "Hours"; value: page.hours; from: 0.5; to: 16; step: 0.5; decimals: 1; unit: "h"; onEdited: value => page.hours = value }
        }
        FormRow {
            label: "Bitrate"
            NumberField { objectName: "rate"; name: "Bitrate"; value: page.rate; from: 1; to: 10000; decimals: 1; unit: "Mbps"; onEdited: value => page.rate = value }
        }
        FormRow {
            label: "Name"
            InputField { objectName: "field"; name: "Name"; placeholderText: "A001_2026-06-06" }
        }
        FormRow {
            label: "Disabled"
            InputField { objectName: "field.off"; name: "Off"; text: "can't be typed into"; enabled: false }
        }
    }
    Card {
        objectName: "more"
        title: "More"
        Disclosure {
            objectName: "disclosure"
            title: "How to image the card (one-time, in Terminal)"
            CodeBlock { objectName: "disclosure.code"; text: "1.  diskutil list external\n2.  If macOS offers to repair it: CANCEL." }
        }
    }
    DefaultAction {
        onActivated: {
            ++page.returns;
            page.last = "default " + page.returns;
        }
    }
    Sheet {
        id: sheet
        title: "Really?"
        symbol: "exclamationmark.triangle.fill"
        tint: Theme.danger
        Note { objectName: "sheet.text"; text: page.longLabel; font: Theme.body }
        ActionButton { objectName: "sheet.close"; text: "Close"; Layout.alignment: Qt.AlignRight; onClicked: sheet.close() }
    }
}
