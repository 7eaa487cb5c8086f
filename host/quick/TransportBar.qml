import QtQuick
import QtQuick.Controls

// The seek bar, and below it the buttons, times, title and volume. Leaves out what has no room.
Pane {
    id: transport

    required property var session

    signal menuWanted

    padding: 6
    contentHeight: seekBar.height + left.height + 2

    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => transport.session.turnWheel(event.angleDelta.y)
    }

    Bar {
        id: seekBar

        objectName: "seekBar"
        width: parent.width
        enabled: transport.session.player.seekable
        value: transport.session.place
        text: transport.session.timeAt(pointed)
        onMoved: part => transport.session.seekTo(part)
    }

    Row {
        id: left

        anchors.bottom: parent.bottom
        spacing: 2

        BarButton { name: "previous" }
        BarButton { name: "play" }
        BarButton { name: "next" }
    }

    Label {
        anchors { left: left.right; right: right.left; verticalCenter: left.verticalCenter; margins: 6 }
        elide: Text.ElideRight
        textFormat: Text.PlainText
        text: transport.session.times + "   " + transport.session.caption
    }

    Row {
        id: right

        anchors { right: parent.right; bottom: parent.bottom }
        spacing: 2

        BarButton { name: "mute" }
        Bar {
            objectName: "volumeBar"
            width: 110
            height: parent.height
            visible: transport.width >= 520
            warning: transport.session.warning
            mark: transport.session.fullVolume
            value: transport.session.volume
            text: transport.session.volumeAt(pointed)
            onMoved: part => transport.session.setVolume(part)
        }
        BarButton { name: "list" }
        BarButton { name: "fullscreen" }
        BarButton {
            drawing: "menu"
            text: qsTr("Menu")
            display: AbstractButton.IconOnly
            onClicked: transport.menuWanted()
        }
    }
}
