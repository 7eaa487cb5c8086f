import QtQuick.Controls
import MediaPlayer

ApplicationWindow {
    width: 640; height: 400; visible: true
    title: video.errorString
    Video {
        id: video
        anchors.fill: parent
        source: "file:" + Qt.application.arguments[1]
        autoPlay: true
    }
    footer: Slider { to: video.duration; value: video.position; onMoved: video.position = value }
}
