import QtQuick
import Keldo.Components
import Keldo.Offload

ProgressCard {
    id: view

    required property OffloadViewModel model
    readonly property var progress: model.progress

    function phaseText(phase) {
        const words = {
            scanning: "Scanning source…",
            copying: "Copying to all drives…",
            verifying: "Verifying checksums…",
            writingReport: "Writing hash report…"
        };
        return words[phase] ?? "Finishing…";
    }

    objectName: "offload.running"
    title: "Offloading"
    phase: phaseText(progress?.phase)
    fraction: progress?.fraction ?? 0
    current: progress?.currentFile ?? ""
    onCancelled: model.cancel()

    StatBadge { objectName: "offload.files"; text: (view.progress?.filesCompleted ?? 0) + "/" + (view.progress?.totalFiles ?? 0) + " files"; symbol: "doc.on.doc" }
    StatBadge { objectName: "offload.bytes"; text: (view.progress?.completed ?? "0 B") + " / " + (view.progress?.total ?? "0 B"); symbol: "scalemass" }
    StatBadge { objectName: "offload.drives"; text: view.model.destinations.count + " drives"; symbol: "externaldrive" }
}
