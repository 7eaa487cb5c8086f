import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The seek bar, and below it the buttons, times, title and volume. Leaves out what has no room.
Pane {
    id: transport

    required property var session
    readonly property var player: session.player
    readonly property real loudest: 2

    signal menuWanted

    padding: 6

    WheelHandler {
        onWheel: event => transport.session.changeVolume(event.angleDelta.y > 0 ? 1 : -1)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 2

        Bar {
            objectName: "seekBar"
            Layout.fillWidth: true
            enabled: transport.player.seekable
            value: transport.player.duration > 0 ? transport.player.position / transport.player.duration : 0
            text: transport.session.timeAt(pointed)
            onMoved: part => transport.session.seekTo(part)
        }

        RowLayout {
            spacing: 2

            BarButton { command: transport.session.commands.named("previous") }
            BarButton { command: transport.session.commands.named("play") }
            BarButton { command: transport.session.commands.named("next") }
            Label { text: transport.session.times }
            Label {
                Layout.fillWidth: true
                Layout.leftMargin: 8
                elide: Text.ElideRight
                textFormat: Text.PlainText
                text: transport.session.artist ? qsTr("%1 - %2").arg(transport.session.artist).arg(transport.session.title) : transport.session.title
            }
            BarButton { command: transport.session.commands.named("mute") }
            Bar {
                objectName: "volumeBar"
                Layout.preferredWidth: transport.width < 520 ? 0 : 110 // what is hidden loses its place
                clip: true
                warning: transport.session.warning
                mark: 1 / transport.loudest
                value: transport.player.volume / transport.loudest
                text: qsTr("%1 %").arg(Math.round(pointed * transport.loudest * 100))
                onMoved: part => transport.session.setVolume(part * transport.loudest)
            }
            BarButton { command: transport.session.commands.named("list") }
            BarButton { command: transport.session.commands.named("fullscreen") }
            BarButton {
                drawing: "menu"
                text: qsTr("Menu")
                display: AbstractButton.IconOnly
                onClicked: transport.menuWanted()
            }
        }
    }
}
