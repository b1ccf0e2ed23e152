import QtQuick

// A small fact.
SymbolLabel {
    color: Theme.secondary
    spacing: Theme.small - 2
}
