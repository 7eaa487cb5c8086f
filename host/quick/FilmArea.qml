import QtQuick
import QtQuick.Controls
import MediaPlayer

// The picture, and over it what there is to tell: a hint, a failure, a wait, a notice, or what a
// sound is called and its cover.
Rectangle {
    id: area

    required property var session
    property alias film: film
    readonly property bool tells: session.headline !== ""

    component Line: Text {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        textFormat: Text.PlainText
    }

    color: "black"

    Video {
        id: film

        anchors.fill: parent
        player: area.session.player
        opacity: player.error === Player.NoError ? 1 : 0 // the failure is told here
    }

    Rectangle { anchors.fill: parent; visible: area.tells; color: "#80000000" } // under the words

    Image {
        readonly property real side: Math.min(area.width - 32, area.height - 102, 480)

        anchors.horizontalCenter: parent.horizontalCenter
        y: (area.height - 70 - height) / 2
        width: side
        height: side
        visible: area.session.soundOnly && !area.tells && side > 0
        fillMode: Image.PreserveAspectFit
        source: "image://host/" + (area.session.coverSerial ? "cover/" + area.session.coverSerial : "note")
        sourceSize.height: area.session.coverSerial ? 0 : 240
    }

    Column {
        x: 16
        y: area.tells ? (area.height - height) / 2 : area.height - 78
        width: area.width - 32
        spacing: 6
        visible: area.tells || area.session.soundOnly

        Line {
            elide: Text.ElideMiddle
            color: "white"
            font.pointSize: Application.font.pointSize * 1.5
            text: area.tells ? area.session.headline : area.session.title
        }
        Line {
            wrapMode: Text.Wrap
            color: "#d5dae3"
            text: area.tells ? area.session.details : area.session.artist
        }
    }

    Label {
        x: 16
        y: 16
        width: Math.min(implicitWidth, area.width - 32)
        padding: 8
        visible: text !== ""
        elide: Text.ElideMiddle
        textFormat: Text.PlainText
        color: "white"
        text: area.session.notice
        background: Rectangle { radius: 6; color: area.session.warns ? area.session.warning : "#dc1f2937" }
    }

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true // so that no movement reaches what is below
        cursorShape: area.session.controlsShown ? Qt.ArrowCursor : Qt.BlankCursor
        onDoubleClicked: area.session.fullScreen = !area.session.fullScreen
        onWheel: wheel => area.session.turnWheel(wheel.angleDelta.y)
    }
}
