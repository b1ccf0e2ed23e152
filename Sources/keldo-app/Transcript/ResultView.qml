pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Transcript

// What was heard, and the corrections of who said it.
ColumnLayout {
    id: view

    required property TranscriptViewModel transcript
    readonly property Item outcome: ready
    readonly property var names: transcript.displayNames
    readonly property var buckets: transcript.assignableBuckets

    function nameOf(bucket) {
        return (names[bucket] ?? bucket) || "—";
    }

    spacing: Theme.wide

    Card {
        id: ready
        objectName: "transcript.ready"
        title: "Transcript Ready"
        systemImage: "checkmark.seal.fill"
        tint: Theme.proved

        RowLayout {
            spacing: Theme.medium
            StatBadge { objectName: "transcript.lineCount"; text: lines.count + " lines · start " + view.transcript.startTimecode; symbol: "doc.text" }
            ActionButton { objectName: "transcript.open"; text: "Open .docx"; symbol: "doc.text"; onClicked: view.transcript.openDocx() }
            ActionButton { objectName: "transcript.reveal"; text: "Reveal in Finder"; symbol: "folder"; onClicked: view.transcript.revealDocx() }
        }
    }
    Card {
        objectName: "transcript.slateCard"
        visible: view.transcript.slateLine !== ""
        title: "Slate"
        systemImage: "film"

        SelectableText { objectName: "transcript.slate"; text: view.transcript.slateLine }
    }
    Card {
        objectName: "transcript.hintsCard"
        visible: view.transcript.hasHints
        title: "Who's talking? (confirm these)"
        systemImage: "questionmark.circle"

        Column {
            spacing: Theme.small
            Layout.fillWidth: true
            Repeater {
                model: view.transcript.editableSpeakers
                RowLayout {
                    id: hint
                    required property int index
                    required property var model
                    visible: model.note !== ""
                    width: parent.width
                    NameText { objectName: "transcript.hintName." + hint.index; name: view.nameOf(hint.model.original); font: Theme.emphasis; Layout.fillWidth: false; Layout.maximumWidth: hint.width / 3 }
                    PlainText { objectName: "transcript.hintNote." + hint.index; text: "— " + hint.model.note }
                    NameText { objectName: "transcript.hintTC." + hint.index; name: "@ " + hint.model.atTimecode; font: Theme.code; color: Theme.secondary }
                }
            }
        }
        Note { objectName: "transcript.hintsVerify"; text: "A hint from the frame while each speaker talks — verify against the picture." }
    }
    Card {
        objectName: "transcript.namesCard"
        visible: view.transcript.editableSpeakers.count > 0
        title: "Speaker Names"
        systemImage: "person.2"

        Note { objectName: "transcript.namesNote"; text: "Rename the auto-detected speakers, and/or reassign individual lines in the Preview below (click a line's speaker). Then save — every line and the .docx update." }
        Column {
            spacing: Theme.small
            Layout.fillWidth: true
            Repeater {
                model: view.transcript.editableSpeakers
                RowLayout {
                    id: speaker
                    required property int index
                    required property var model
                    width: parent.width
                    spacing: Theme.medium
                    NameText { objectName: "transcript.original." + speaker.index; name: speaker.model.original || "—"; Layout.fillWidth: false; Layout.preferredWidth: Theme.labelWidth }
                    Symbol { name: "arrow.right"; color: Theme.secondary }
                    InputField { objectName: "transcript.name." + speaker.index; name: "Name of " + speaker.model.original; text: speaker.model.name; Layout.maximumWidth: Theme.choiceWidth; onTextEdited: speaker.model.name = text }
                    Note { objectName: "transcript.note." + speaker.index; text: speaker.model.note }
                }
            }
        }
        RowLayout {
            spacing: Theme.medium
            Note { objectName: "transcript.renameStatus"; text: view.transcript.renameStatus; horizontalAlignment: Text.AlignRight }
            DefaultButton { objectName: "transcript.save"; text: "Update & Re-save .docx"; symbol: "square.and.arrow.down"; onClicked: view.transcript.applyEdits() }
        }
    }
    Card {
        objectName: "transcript.previewCard"
        title: "Preview — click a speaker to reassign the line"
        systemImage: "doc.text"

        Note { objectName: "transcript.nothing"; visible: lines.count === 0; font: Theme.body; text: "Nothing was heard in this clip." }
        BoundedList {
            id: lines
            objectName: "transcript.lines"
            name: "Preview"
            bound: Theme.longListHeight
            spacing: Theme.small
            model: view.transcript.editedSegments
            activeFocusOnTab: true
            highlightMoveDuration: 0
            onCountChanged: currentIndex = 0
            // The arrows go from line to line; Page Up and Page Down scroll.
            Keys.onUpPressed: decrementCurrentIndex()
            Keys.onDownPressed: incrementCurrentIndex()
            delegate: FocusScope {
                id: line
                required property int index
                required property string bucket
                required property string timecode
                required property string text
                width: lines.rowWidth
                implicitHeight: row.implicitHeight

                RowLayout {
                    id: row
                    width: parent.width
                    spacing: Theme.medium
                    PlainText { objectName: "transcript.lineTC." + line.index; text: line.timecode; color: Theme.secondary; font: Theme.code; Layout.alignment: Qt.AlignTop; Layout.topMargin: Theme.tiny + 2; Layout.leftMargin: Theme.tiny }
                    ActionButton {
                        id: button
                        objectName: "transcript.lineSpeaker." + line.index
                        text: view.nameOf(line.bucket)
                        details: line.timecode + " " + line.text
                        trailingSymbol: "chevron.down"
                        spokenRole: Accessible.ButtonMenu
                        focus: true
                        activeFocusOnTab: false
                        Layout.preferredWidth: Theme.typedWidth
                        Layout.alignment: Qt.AlignTop
                        onClicked: speakers.openAt(line.index, line.bucket, button)
                    }
                    Note { objectName: "transcript.lineText." + line.index; text: line.text; font: Theme.body; color: Theme.primary; Layout.alignment: Qt.AlignTop; Layout.topMargin: Theme.tiny + 2 }
                }
            }
        }
        // One for all lines.
        ChoiceList {
            id: speakers
            function openAt(line, bucket, button) {
                lines.currentIndex = line;
                currentIndex = view.buckets.indexOf(bucket);
                parent = button;
                open();
            }
            name: "Speaker"
            labels: view.buckets.map(bucket => view.nameOf(bucket))
            onChosen: index => view.transcript.reassign(lines.currentIndex, view.buckets[index])
        }
    }
}
