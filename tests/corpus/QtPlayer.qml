import QtMultimedia
import QtQuick

// Qt's own player, telling what the corpus asks of every player.
Window {
    width: 640
    height: 480
    visible: true
    color: "black"

    function tell(end) {
        console.log("S=" + player.position / 1000 + " D=" + player.duration / 1000 + end);
    }

    MediaPlayer {
        id: player

        source: Qt.application.arguments[Qt.application.arguments.length - 1]
        videoOutput: output
        audioOutput: AudioOutput {}
        Component.onCompleted: play()
        onErrorOccurred: (error, text) => console.log("W=" + text)
        onMediaStatusChanged: {
            if (player.mediaStatus === MediaPlayer.EndOfMedia)
                tell("\nE=");
        }
    }

    VideoOutput {
        id: output

        anchors.fill: parent
    }

    Timer {
        interval: 100
        repeat: true
        running: player.position > 0
        onTriggered: tell("")
    }
}
