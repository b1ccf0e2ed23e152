pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components

Page {
    id: page

    readonly property string sentence: "Export the sync as project XML the editor imports directly — FCPXML for Resolve / Premiere / Final Cut, ALE (scene/take/sound roll) for Avid. No re-encoding; relinks to your media."
    readonly property var names: ["A001C001.MXF", "two\nlines", "tab\tand\u0007bell", "\u05e9\u05dc\u05d5\u05dd.MXF",
        "/media/\u05e9\u05dc\u05d5\u05dd/\u0639\u0631\u0628\u064a/A001", "evil\u202egpj.exe", "<b>bold</b> & co", "Z\u0351\u036b\u0343\u036a\u0302\u036b\u033d\u034f\u0334\u0319\u0324\u031e\u0349\u035a\u032f\u031e\u0320\u034dalgo", ""]

    objectName: "page"

    Card {
        objectName: "texts"
        title: "Texts"
        systemImage: "doc.text"
        Note { objectName: "note"; text: page.sentence }
        Notice { objectName: "notice"; text: page.sentence }
        Notice { objectName: "notice.short"; text: "One line."; symbol: "xmark.circle.fill"; color: Theme.danger }
        Notices { objectName: "notices"; lines: ["The first thing to know.", "The second."] }
        Notices { objectName: "notices.none"; lines: [] }
        SymbolLabel { objectName: "label"; text: "Formatting locked — keep the card."; symbol: "lock.fill"; color: Theme.secondary }
        SymbolLabel { objectName: "label.long"; text: page.sentence; symbol: "lock.fill" }
        SelectableText { objectName: "selectable"; text: "An error that can be copied: <i>as it is</i>." }
        CodeBlock {
            objectName: "code"
            text: "1.  diskutil list external   ← find the card's disk number BY SIZE (e.g. disk4)\n2.  If macOS offers to initialize or repair it: CANCEL.\n3.  sudo /opt/homebrew/bin/ddrescue -d -r3 /dev/rdisk4 ~/card.img ~/card.map"
        }
        CodeBlock { objectName: "code.long"; text: "ffmpeg -i " + "/media/dit/A001/".repeat(20) + " -c:v prores_ks -y out.mov" }
    }
    Card {
        objectName: "names"
        title: "Names of others"
        Column {
            id: rows
            spacing: Theme.medium
            Layout.fillWidth: true

            Repeater {
                model: page.names
                FileRow {
                    required property int index
                    required property string modelData
                    objectName: "name." + index
                    width: rows.width
                    title: modelData
                }
            }
        }
    }
}
