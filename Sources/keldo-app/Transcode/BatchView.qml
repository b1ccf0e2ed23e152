pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Keldo.Components
import Keldo.Transcode

// What is to be transcoded, into what, and how it is to look.
ColumnLayout {
    id: view

    required property TranscodeViewModel transcode
    readonly property int clips: transcode.inputs.count
    readonly property var sizes: [0, 3840, 1920, 1280]
    readonly property var presets: transcode.presets

    spacing: Theme.wide

    Card {
        objectName: "transcode.clipsCard"
        title: "Clips"
        systemImage: "film"

        Note {
            objectName: "transcode.noclips"
            visible: view.clips === 0
            font: Theme.body
            text: "Add one or more clips to transcode."
        }
        BoundedList {
            id: clips
            objectName: "transcode.clips"
            name: "Clips"
            bound: Theme.longListHeight
            model: view.transcode.inputs
            delegate: FileRow {
                id: clip
                required property int index
                required property string name
                objectName: "transcode.clip." + index
                width: clips.rowWidth
                title: name

                IconButton {
                    objectName: "transcode.remove." + clip.index
                    symbol: "minus.circle.fill"
                    text: "Remove " + clip.name
                    color: Theme.danger
                    onClicked: view.transcode.removeInput(clip.index)
                }
            }
        }
        ActionButton {
            objectName: "transcode.add"
            text: "Add Clips…"
            symbol: "plus"
            onClicked: view.transcode.addInputs()
        }
    }
    Card {
        objectName: "transcode.outputCard"
        title: "Output Format"
        systemImage: "square.and.arrow.down"

        FormRow {
            label: "Preset"
            Picker {
                objectName: "transcode.preset"
                name: "Preset"
                labels: view.presets.map(preset => preset.text)
                groups: view.presets.map(preset => preset.heading)
                currentIndex: view.transcode.presetIndex
                onChosen: index => view.transcode.presetIndex = index
            }
        }
        FormRow {
            label: "Destination"
            PathRow {
                objectName: "transcode.output"
                path: view.transcode.outputDir.path
                placeholder: "No folder selected"
                buttonDescription: "Choose the output folder"
                onChosen: view.transcode.chooseOutput()
            }
        }
    }
    Card {
        objectName: "transcode.lookCard"
        title: "Look (LUT)"
        systemImage: "camera.filters"

        Toggle {
            objectName: "transcode.applyLUT"
            text: "Apply a 3D LUT"
            on: view.transcode.applyLUT
            onSwitched: on => view.transcode.applyLUT = on
        }
        PathRow {
            objectName: "transcode.lut"
            visible: view.transcode.applyLUT
            path: view.transcode.lutURL.path
            placeholder: "No .cube selected"
            buttonText: "Choose LUT…"
            onChosen: view.transcode.chooseLUT()
        }
        FormRow {
            label: "Resolution"
            Picker {
                objectName: "transcode.size"
                name: "Resolution"
                labels: ["Full (source)", "UHD 3840", "HD 1920", "Proxy 1280"]
                currentIndex: view.sizes.indexOf(view.transcode.scaleLongEdge)
                onChosen: index => view.transcode.scaleLongEdge = view.sizes[index]
            }
        }
    }
    Card {
        objectName: "transcode.previewCard"
        visible: view.transcode.commandPreview !== ""
        title: "Command Preview"
        systemImage: "terminal"

        CodeBlock {
            objectName: "transcode.preview"
            text: view.transcode.commandPreview
        }
    }
}
