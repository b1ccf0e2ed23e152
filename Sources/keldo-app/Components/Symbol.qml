import QtQuick
import QtQuick.Layouts
import QtQuick.Window

// One symbol by its name, tinted.
Image {
    id: symbol

    required property string name
    property color color: Theme.primary
    property int size: Theme.iconSize

    // The colour without a "#", which would end the location.
    source: name === "" ? "" : "image://symbol/" + name + "/" + String(color).slice(-6)
    sourceSize { width: size * Screen.devicePixelRatio; height: size * Screen.devicePixelRatio }
    width: size
    height: size
    // Its implicit size is that of the picture, in the pixels of the screen.
    Layout.preferredWidth: size
    Layout.preferredHeight: size
    Accessible.ignored: true
}
