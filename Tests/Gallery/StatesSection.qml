import QtQuick
import Keldo.Components

Page {
    id: page

    property bool cancelled: false

    objectName: "page"

    ProgressCard { objectName: "begun"; title: "Begun"; phase: "Finishing…"; fraction: 0 }
    ProgressCard {
        objectName: "running"
        title: page.cancelled ? "Cancelled" : "Offloading"
        phase: "Verifying checksums…"
        fraction: 0.419
        current: "PRIVATE/M4ROOT/CLIP/" + "a-long-folder/".repeat(12) + "A001C003\n261121XK.MXF"
        onCancelled: page.cancelled = true
        StatBadge { objectName: "running.files"; text: "168/412 files"; symbol: "doc.on.doc" }
        StatBadge { text: "97.7 GB / 238.4 GB"; symbol: "scalemass" }
    }
    ProgressCard { objectName: "done"; title: "Done"; phase: "Writing hash report…"; fraction: 1 }
    Card {
        objectName: "busyCard"
        title: "Busy"
        systemImage: "magnifyingglass"
        tint: Theme.attention
        Busy { objectName: "busy"; text: "Scanning…" }
        Busy { objectName: "busy.hidden"; text: "Never shown"; visible: false }
    }
    FailureCard {
        objectName: "failure"
        title: "Offload Failed"
        message: "Failed writing to /media/SHUTTLE_01: No space left on device"
        reasons: ["The reel folder lies inside the reel folder on RAID_MASTER."]
    }
    FailureCard { objectName: "failure.bare"; title: "Scan Failed"; message: "Could not scan that folder." }
}
