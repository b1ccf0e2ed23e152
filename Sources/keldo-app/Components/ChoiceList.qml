pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic

// The list that opens below a control: one of its lines is chosen with a click, or with the arrow
// keys, Home, End or first letters, and Return or Space. Escape closes it. `groups` has the heading
// that each line stands under, where there are headings.
Popup {
    id: list

    required property string name
    required property var labels
    property var groups: []
    property int currentIndex: -1

    signal chosen(int index)

    function choose(index) {
        close();
        if (index >= 0)
            chosen(index);
    }
    function find(letter) {
        for (let i = 1; i <= labels.length; ++i) {
            const at = (rows.currentIndex + i) % labels.length;
            if (labels[at].toLowerCase().startsWith(letter.toLowerCase())) {
                rows.currentIndex = at;
                return;
            }
        }
    }
    function textWidth() {
        return Math.max(0, ...labels.map(label => metrics.advanceWidth(label)));
    }

    y: parent ? parent.height + Theme.tiny : 0
    implicitWidth: Math.max(parent ? parent.width : 0, textWidth() + 2 * Theme.huge + Theme.iconSize + Theme.large)
    implicitHeight: Math.min(rows.contentHeight + 2 * padding, Theme.choicesHeight)
    padding: Theme.tiny
    margins: Theme.small
    modal: true
    dim: false
    focus: true
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    onAboutToShow: rows.currentIndex = Math.max(0, currentIndex)

    FontMetrics {
        id: metrics
        font: Theme.body
    }
    background: Rectangle {
        radius: Theme.small
        color: Theme.cardBackground
        border.width: Theme.hairline
        border.color: Theme.separator
    }
    ListView {
        id: rows
        anchors.fill: parent
        clip: true
        focus: true
        model: list.labels
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        keyNavigationEnabled: true
        ScrollBar.vertical: ScrollMark {}
        Accessible.role: Accessible.PopupMenu
        Accessible.name: list.name
        Keys.onReturnPressed: list.choose(currentIndex)
        Keys.onEnterPressed: list.choose(currentIndex)
        Keys.onSpacePressed: list.choose(currentIndex)
        Keys.onPressed: event => {
            event.accepted = true;
            if (event.key === Qt.Key_Home)
                currentIndex = 0;
            else if (event.key === Qt.Key_End)
                currentIndex = count - 1;
            else if (event.text > " ")
                list.find(event.text);
            else
                event.accepted = false;
        }

        delegate: Column {
            id: line

            required property int index
            required property string modelData
            readonly property string heading: list.groups[index] ?? ""

            width: ListView.view.width

            PlainText {
                objectName: "choice.heading." + line.index
                visible: line.heading !== "" && line.heading !== list.groups[line.index - 1]
                width: line.width
                padding: Theme.small
                bottomPadding: Theme.tiny
                text: line.heading
                color: Theme.secondary
                font: Theme.print
                elide: Text.ElideRight
            }
            PressButton {
                id: choice
                objectName: "choice." + line.index
                width: line.width
                height: Theme.buttonHeight
                horizontalPadding: Theme.small
                text: line.modelData
                takesFocus: false
                spokenRole: Accessible.MenuItem
                Accessible.checkable: list.currentIndex >= 0
                Accessible.checked: line.index === list.currentIndex
                onHoveredChanged: if (hovered)
                    rows.currentIndex = line.index
                onClicked: list.choose(line.index)

                contentItem: SymbolLabel {
                    text: choice.text
                    symbol: line.index === list.currentIndex ? "checkmark" : ""
                    color: choice.isUnderHand ? Theme.onProminent : Theme.primary
                }
                readonly property bool isUnderHand: rows.currentIndex === line.index
                background: Rectangle {
                    radius: Theme.smallRadius
                    color: choice.isUnderHand ? Theme.prominentBackground : "transparent"
                }
            }
        }
    }
}
