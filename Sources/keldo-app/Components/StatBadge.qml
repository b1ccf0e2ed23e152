import QtQuick

// A small fact.
SymbolLabel {
    color: Theme.secondary
    font: Theme.body
    spacing: Theme.small - 2
}
