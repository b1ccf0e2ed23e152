import QtQuick
import Keldo.Components
import Keldo.Support

// The least that is a screen.
Item {
    required property Desktop desktop

    objectName: "dummy"

    PlainText {
        text: "Dummy"
    }
}
