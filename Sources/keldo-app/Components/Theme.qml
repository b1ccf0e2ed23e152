pragma Singleton
import QtQuick
import Keldo.Components

// Every colour, size and font of the application, in three layers: the palette, what a colour
// means, and sizes. Light or dark as the system's own palette is.
QtObject {
    id: theme

    readonly property SystemPalette system: SystemPalette {}
    readonly property bool dark: system.window.hslLightness < system.windowText.hslLightness

    readonly property QtObject light: QtObject {
        readonly property color window: "#f4f5f7"
        readonly property color card: "#ffffff"
        readonly property color separator: "#dfe1e6"
        readonly property color field: "#f1f2f5"
        readonly property color trough: "#e6e8ec"
        readonly property color text: "#1c1e22"
        readonly property color secondary: "#5f6570"
        readonly property color blue: "#0b63d6"
        readonly property color bluePressed: "#094fab"
        readonly property color green: "#17803d"
        readonly property color orange: "#b45309"
        readonly property color red: "#c62828"
        readonly property color redFill: "#c62828"
        readonly property color redPressed: "#a31f1f"
        readonly property color selected: "#ffffff"
    }
    readonly property QtObject night: QtObject {
        readonly property color window: "#1b1c1f"
        readonly property color card: "#26282c"
        readonly property color separator: "#3a3d43"
        readonly property color field: "#1f2124"
        readonly property color trough: "#303338"
        readonly property color text: "#eceef1"
        readonly property color secondary: "#a3a8b0"
        readonly property color blue: "#5aa2ff"
        readonly property color bluePressed: "#094fab"
        readonly property color green: "#4cc38a"
        readonly property color orange: "#f0a04b"
        readonly property color red: "#ff6b61"
        readonly property color redFill: "#d23f36"
        readonly property color redPressed: "#b8342c"
        readonly property color selected: "#4a4e56"
    }
    readonly property QtObject palette: dark ? night : light
    readonly property color white: "#ffffff"
    readonly property color halfBlack: "#80000000"

    readonly property color windowBackground: palette.window
    readonly property color cardBackground: palette.card
    readonly property color fieldBackground: palette.field
    readonly property color troughBackground: palette.trough
    readonly property color separator: palette.separator
    readonly property color primary: palette.text
    readonly property color secondary: palette.secondary
    readonly property color accent: palette.blue
    readonly property color proved: palette.green
    readonly property color attention: palette.orange
    readonly property color danger: palette.red
    readonly property color selectedSegment: palette.selected
    readonly property color buttonBackground: dark ? palette.trough : palette.card
    readonly property color buttonPressed: dark ? palette.selected : palette.trough
    readonly property color prominentBackground: light.blue
    readonly property color prominentPressed: palette.bluePressed
    readonly property color dangerBackground: palette.redFill
    readonly property color dangerPressed: palette.redPressed
    readonly property color onProminent: white
    readonly property color shade: halfBlack

    readonly property int hairline: 1
    readonly property int tiny: 4
    readonly property int small: 8
    readonly property int medium: 10
    readonly property int regular: 12
    readonly property int large: 16
    readonly property int wide: 20
    readonly property int huge: 24
    readonly property int smallRadius: 6
    readonly property int buttonRadius: 7
    readonly property int cardRadius: 12
    readonly property int fieldHeight: 28
    readonly property int buttonHeight: 28
    readonly property int prominentHeight: 34
    readonly property int rowHeight: 44
    readonly property int headerHeight: 58
    readonly property int iconSize: 16
    readonly property int listHeight: 240
    readonly property int contentWidth: 1100
    readonly property int labelWidth: 116
    readonly property int sheetWidth: 520
    readonly property int modeWidth: 560
    readonly property int choiceWidth: 320
    readonly property int typedWidth: 160
    readonly property int ringWidth: 2
    readonly property int ringGap: 3
    readonly property int hintDelay: 600

    readonly property string textFamily: Fonts.textFamily
    readonly property string codeFamily: Fonts.codeFamily
    readonly property font body: Qt.font({family: textFamily, pixelSize: 13})
    readonly property font emphasis: Qt.font({family: textFamily, pixelSize: 13, weight: Font.Medium})
    readonly property font strong: Qt.font({family: textFamily, pixelSize: 13, weight: Font.DemiBold})
    readonly property font headline: Qt.font({family: textFamily, pixelSize: 15, weight: Font.DemiBold})
    readonly property font print: Qt.font({family: textFamily, pixelSize: 12})
    readonly property font title: Qt.font({family: textFamily, pixelSize: 16, weight: Font.Bold})
    readonly property font code: Qt.font({family: codeFamily, pixelSize: 12})
    readonly property font codeStrong: Qt.font({family: codeFamily, pixelSize: 13, weight: Font.Bold})
}
