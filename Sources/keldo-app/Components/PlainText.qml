import QtQuick
import QtQuick.Controls.Basic

// Text as it is, never as markup, that assistive tools can read; where it is cut, the whole stands
// in a tooltip.
Text {
    id: line

    color: Theme.primary
    font: Theme.body
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    HoverHandler {
        id: hover
        enabled: line.truncated
    }
    Loader {
        active: hover.hovered && line.truncated
        sourceComponent: Hint {
            shown: true
            text: line.text
        }
    }
}
