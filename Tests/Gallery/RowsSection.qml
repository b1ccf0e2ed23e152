pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components

Page {
    id: page

    readonly property string longPath: "/media/dit/" + "a-folder-with-a-long-name/".repeat(8) + "A001_C003.MXF"
    property var files: ["A001.MXF", "A002.MXF", "A003.MXF"]
    property string last: ""

    objectName: "page"

    Card {
        objectName: "paths"
        title: "Paths"
        systemImage: "sdcard"
        PathRow { objectName: "path.empty"; path: ""; placeholder: "No card selected"; onChosen: page.last = "chosen" }
        PathRow { objectName: "path.full"; path: "/media/dit/A001_C003"; placeholder: "No card selected"; buttonText: "Choose Image" }
        PathRow { objectName: "path.long"; path: page.longPath; placeholder: "No card selected" }
        PathRow { objectName: "path.off"; path: ""; placeholder: "Not now"; enabled: false }
        Note { objectName: "last"; text: page.last; visible: text !== "" }
    }
    Card {
        objectName: "files"
        title: "Files"
        systemImage: "film"
        Column {
            id: rows
            spacing: Theme.medium
            Layout.fillWidth: true

            Repeater {
                model: page.files
                FileRow {
                    id: file
                    required property int index
                    required property string modelData
                    objectName: "file." + index
                    width: rows.width
                    title: modelData
                    IconButton {
                        objectName: "remove." + file.index
                        symbol: "minus.circle.fill"
                        text: "Remove " + file.title
                        color: Theme.danger
                        onClicked: page.files = page.files.filter(name => name !== file.title)
                    }
                }
            }
        }
        FileRow { objectName: "file.long"; title: page.longPath; detail: page.longPath; symbol: "externaldrive.fill" }
        FileRow { objectName: "file.awkward"; title: "line\nfeed\ttab"; detail: "/media/\u05d0\u05d1\u05d2/\u202egpj.exe"; symbol: "externaldrive.fill" }
    }
    Card {
        objectName: "statuses"
        title: "Statuses"
        StatusRow { objectName: "status.good"; title: "A001C001.MOV"; symbol: "checkmark.circle.fill"; color: Theme.proved; trailing: "healthy" }
        StatusRow { objectName: "status.bad"; title: "A001C002.MOV"; symbol: "xmark.circle.fill"; color: Theme.danger; detail: "ffmpeg said: Invalid data found when processing input, and a good deal more that takes more than a line to say when the window is small.\nAnd a second line." }
        StatusRow { objectName: "status.long"; title: page.longPath; symbol: "cross.circle.fill"; color: Theme.attention; trailing: "missing index" }
        StatusRow { objectName: "status.bare"; title: "no symbol, no detail" }
    }
    Card {
        objectName: "facts"
        title: "Facts"
        FactRow { objectName: "fact"; label: "Runtime per card"; value: "≈ 51 min  (114 GB usable)" }
        FactRow { objectName: "fact.long"; label: "A label that takes more than one line"; value: "a value that wraps ".repeat(12) }
        Badges {
            objectName: "badges"
            StatBadge { objectName: "badge.0"; text: "412 files"; symbol: "doc.on.doc" }
            StatBadge { objectName: "badge.1"; text: "238.4 GB"; symbol: "scalemass" }
            StatBadge { objectName: "badge.2"; text: "2 drives"; symbol: "externaldrive" }
        }
        Badges {
            objectName: "badges.long"
            StatBadge { objectName: "badge.long"; text: page.longPath; symbol: "film" }
            StatBadge { text: "412 files"; symbol: "doc.on.doc" }
        }
    }
    Card {
        objectName: "lists"
        title: "Lists"
        BoundedList {
            id: few
            objectName: "list.short"
            name: "Short"
            model: ["one", "two"]
            delegate: StatusRow {
                required property string modelData
                width: few.rowWidth
                title: modelData
            }
        }
        BoundedList {
            objectName: "list.none"
            name: "None"
            model: []
            delegate: Item {}
        }
        BoundedList {
            id: many
            objectName: "list"
            name: "Thousands"
            model: 5000
            delegate: StatusRow {
                required property int index
                objectName: "line." + index
                width: many.rowWidth
                title: "CLIP_" + index
                symbol: "film"
            }
        }
        BoundedList {
            id: pressable
            objectName: "buttons"
            name: "Buttons"
            bound: 120
            model: 40
            delegate: StatusRow {
                id: line
                required property int index
                width: pressable.rowWidth
                title: "Line " + index
                ActionButton { objectName: "press." + line.index; text: "Press" }
            }
        }
    }
}
