import QtQuick

// Text as it is, never as markup, that assistive tools can read; where it is cut, the whole stands
// in a tooltip.
Text {
    id: line

    color: Theme.primary
    font: Theme.body
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    HoverHandler {
        enabled: line.truncated
        onHoveredChanged: hovered && line.truncated ? hint.setSource("Hint.qml", {shown: true, text: line.text})
                                                    : hint.setSource("")
    }
    Loader {
        id: hint
    }
}
