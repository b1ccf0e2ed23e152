pragma Singleton
import QtQuick
import Keldo.Components

// Every colour, size and font of the application, in three layers: the palette, what a colour
// means, and sizes. Light or dark as the system's own palette is.
QtObject {
    id: theme

    readonly property SystemPalette system: SystemPalette {}
    readonly property bool dark: system.window.hslLightness < system.windowText.hslLightness

    readonly property Hues light: Hues {
        window: "#f4f5f7"
        card: "#ffffff"
        separator: "#dfe1e6"
        field: "#f1f2f5"
        trough: "#e6e8ec"
        text: "#1c1e22"
        secondary: "#5f6570"
        blue: "#0b63d6"
        bluePressed: "#094fab"
        green: "#17803d"
        orange: "#b45309"
        red: "#c62828"
        redFill: "#c62828"
        redPressed: "#a31f1f"
        selected: "#ffffff"
    }
    readonly property Hues night: Hues {
        window: "#1b1c1f"
        card: "#26282c"
        separator: "#3a3d43"
        field: "#1f2124"
        trough: "#303338"
        text: "#eceef1"
        secondary: "#a3a8b0"
        blue: "#5aa2ff"
        bluePressed: "#094fab"
        green: "#4cc38a"
        orange: "#f0a04b"
        red: "#ff6b61"
        redFill: "#d23f36"
        redPressed: "#b8342c"
        selected: "#4a4e56"
    }
    readonly property Hues palette: dark ? night : light
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
    readonly property int headerHeight: 58
    readonly property int iconSize: 16
    readonly property int fileRowHeight: 36
    readonly property int listHeight: 240
    readonly property int longListHeight: 420
    readonly property int choicesHeight: 320
    readonly property int scrollStep: 60
    readonly property int rowStep: 24
    readonly property int contentWidth: 1100
    readonly property int labelWidth: 116
    readonly property int planLabelWidth: 240
    readonly property int sheetWidth: 520
    readonly property int modeWidth: 560
    readonly property int choiceWidth: 320
    readonly property int typedWidth: 160
    readonly property int numberWidth: 84
    readonly property real faded: 0.6
    readonly property int ringWidth: 2
    readonly property int ringGap: 3
    readonly property int hintDelay: 600
    readonly property int repeatInterval: 80

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
