import QtQuick
import org.freedesktop.gstreamer.Qt6GLVideoItem

// One player's scene. The library finds the video item by its object name and calls the functions
// by theirs, so their parameters stay untyped: a typed one would refuse the call.
Item {
    id: root

    signal videoSurfaceReadyChanged(bool ready)
    signal destruct

    readonly property bool surfaceReady: video.initializedHere && video.visible
                                         && root.Window.window !== null

    function showOverlay(message) {
        overlayText.text = message
        overlay.visible = true
    }

    function hideOverlay() {
        overlay.visible = false
    }

    anchors.fill: parent
    clip: true // crop margins and rotations overhang

    onSurfaceReadyChanged: root.videoSurfaceReadyChanged(root.surfaceReady)
    Component.onDestruction: root.destruct()

    GstGLQt6VideoItem {
        id: video

        // itemInitialized may still speak of an earlier window.
        property bool initializedHere: false
        // The size of the root that the item's own size was last made for.
        property real fittedWidth: 0
        property real fittedHeight: 0
        property int flips: 0
        property real angle: 0

        // flips: bit 0 mirrors left to right, bit 1 top to bottom; angle: clockwise degrees.
        function setTransformation(flips, angle) {
            video.flips = flips
            video.angle = angle
        }

        // The library sets the item's geometry to the root's plus the crop margins. Following the
        // root by differences keeps those margins when the host resizes its item.
        function follow() {
            video.width += root.width - video.fittedWidth
            video.height += root.height - video.fittedHeight
            video.fittedWidth = root.width
            video.fittedHeight = root.height
        }

        Window.onWindowChanged: video.initializedHere = false
        onItemInitializedChanged: video.initializedHere = video.itemInitialized

        objectName: "videoItem"
        // The item pushes input into the pipeline and may block on it: no input reaches it.
        enabled: false

        transform: [
            Scale {
                origin.x: video.width / 2
                origin.y: video.height / 2
                xScale: video.flips & 1 ? -1 : 1
                yScale: video.flips & 2 ? -1 : 1
            },
            Rotation {
                origin.x: video.width / 2
                origin.y: video.height / 2
                angle: video.angle
            }
        ]

        Component.onCompleted: video.follow()
    }

    onWidthChanged: video.follow()
    onHeightChanged: video.follow()

    Rectangle {
        id: overlay

        visible: false
        anchors.centerIn: parent
        // The text's `implicitWidth` depends on its `width`: a binding loop.
        width: Math.min(Math.ceil(overlayMetrics.advanceWidth) + 32, root.width)
        height: Math.min(overlayText.implicitHeight + 20, root.height)
        radius: 8
        color: "#b0000000"

        TextMetrics {
            id: overlayMetrics

            font: overlayText.font
            text: overlayText.text
        }

        Text {
            id: overlayText

            anchors.fill: parent
            anchors.margins: 8
            color: "white"
            font.pixelSize: 18
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            wrapMode: Text.Wrap
        }
    }
}
