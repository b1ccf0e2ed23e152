import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Offload

// The start, and what speaks against it.
ColumnLayout {
    id: view

    required property OffloadViewModel model
    readonly property bool hasOneDrive: model.destinations.count === 1

    spacing: Theme.medium

    Notices { objectName: "offload.startObjection"; lines: view.model.startObjection === "" ? [] : [view.model.startObjection] }
    RowLayout {
        SymbolLabel { objectName: "offload.warning"; visible: view.hasOneDrive; text: "One drive copies fine, but formatting stays locked until you add a second."; symbol: "exclamationmark.triangle.fill"; color: Theme.attention; font: Theme.print }
        Item { visible: !view.hasOneDrive; Layout.fillWidth: true }
        DefaultButton { objectName: "offload.start"; text: "Start Offload"; symbol: "play.fill"; enabled: view.model.canStart; onClicked: view.model.start() }
    }
}
