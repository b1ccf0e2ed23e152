import QtQuick
import Keldo.Components
import Keldo.Offload
import Keldo.Support

// Choose a card, add drives, start, watch, read the verdict.
Page {
    id: screen

    required property Desktop desktop

    objectName: "offload.page"
    head: ActionButton {
        objectName: "offload.new"
        visible: finished.visible
        text: "New Offload"
        symbol: "arrow.counterclockwise"
        enabled: !offload.isFormatting
        onClicked: offload.reset()
    }
    foot: StartView { visible: setup.visible; model: offload }

    OffloadViewModel {
        id: offload
        objectName: "offload"
        desktop: screen.desktop
    }
    SetupView {
        id: setup
        visible: !running.visible && !finished.visible
        model: offload
    }
    RunningView {
        id: running
        visible: offload.stage === OffloadViewModel.Stage.running
        model: offload
    }
    FinishedView {
        id: finished
        visible: offload.stage === OffloadViewModel.Stage.finished
        model: offload
        onVisibleChanged: if (visible)
            attending.start()
        onFormatRequested: formatSheet.open()
    }
    // Once all that one change brings has come.
    Timer { id: attending; interval: 0; onTriggered: screen.attend(finished.outcome) }
    FormatSheet {
        id: formatSheet
        model: offload
    }
}
