import QtQuick
import QtQuick.Controls
import MediaPlayer

ApplicationWindow {
    width: 640; height: 400; visible: true
    Player { id: film; source: "file:" + Qt.application.arguments[1]; autoPlay: true }
    header: Button {
        text: "Switch pages"
        onClicked: pages.depth > 1 ? pages.pop() : pages.push(filmPage)
    }
    StackView { id: pages; anchors.fill: parent; initialItem: Label { text: film.position } }
    Component { id: filmPage; Video { player: film } }
    Component.onCompleted: pages.push(filmPage)
}
