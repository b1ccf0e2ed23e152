pragma ComponentBehavior: Bound
import QtQuick
import Keldo.Components

// Every component in a plain column, which gives none a width.
Flickable {
    id: view

    objectName: "bare"
    contentHeight: column.height

    Column {
        id: column
        objectName: "bare.column"
        spacing: Theme.small

        ActionButton { objectName: "ActionButton"; text: "Button" }
        Badges { objectName: "Badges"; StatBadge { text: "badge"; symbol: "film" } }
        BoundedList { objectName: "BoundedList"; name: "List"; model: 3; delegate: PlainText { text: "row" } }
        Busy { objectName: "Busy"; text: "Busy" }
        Card { objectName: "Card"; title: "Card"; Note { text: "in a card" } }
        CodeBlock { objectName: "CodeBlock"; text: "code" }
        Disclosure { objectName: "Disclosure"; title: "Disclosure" }
        FactRow { objectName: "FactRow"; label: "Label"; value: "value" }
        FailureCard { objectName: "FailureCard"; title: "Failed"; message: "why" }
        FileRow { objectName: "FileRow"; title: "file" }
        FormRow { objectName: "FormRow"; label: "Label" }
        IconButton { objectName: "IconButton"; symbol: "plus"; text: "Add" }
        InputField { objectName: "InputField"; name: "Field" }
        MenuButton { objectName: "MenuButton"; text: "Menu"; labels: ["one"] }
        NameText { objectName: "NameText"; name: "name" }
        Note { objectName: "Note"; text: "note" }
        Notice { objectName: "Notice"; text: "notice" }
        Notices { objectName: "Notices"; lines: ["notice"] }
        NumberField { objectName: "NumberField"; name: "Number"; value: 1 }
        PathRow { objectName: "PathRow"; path: "/media"; placeholder: "" }
        Picker { objectName: "Picker"; name: "Picker"; labels: ["one"]; currentIndex: 0 }
        ProgressCard { objectName: "ProgressCard"; title: "Progress"; phase: "phase"; fraction: 0.5 }
        ProgressLine { objectName: "ProgressLine"; name: "Progress"; value: 0.5 }
        SegmentedControl { objectName: "SegmentedControl"; name: "Segments"; labels: ["a", "b"]; currentIndex: 0 }
        SelectableText { objectName: "SelectableText"; text: "text" }
        StatBadge { objectName: "StatBadge"; text: "badge"; symbol: "film" }
        StatusRow { objectName: "StatusRow"; title: "status" }
        Stepper { objectName: "Stepper"; name: "Stepper"; value: 1; from: 0; to: 2 }
        Symbol { objectName: "Symbol"; name: "film" }
        SymbolLabel { objectName: "SymbolLabel"; text: "label"; symbol: "film" }
        Toggle { objectName: "Toggle"; text: "Toggle"; on: true }
    }
}
