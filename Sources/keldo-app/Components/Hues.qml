import QtQuick

// The palette: bare colours, light or dark, before any has a meaning.
QtObject {
    required property color window
    required property color card
    required property color separator
    required property color field
    required property color trough
    required property color text
    required property color secondary
    required property color blue
    required property color bluePressed
    required property color green
    required property color orange
    required property color red
    required property color redFill
    required property color redPressed
    required property color selected
}
