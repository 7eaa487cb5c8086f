import QtQuick
import QtQuick.Controls
import MediaPlayer

// The picture, and over it what there is to tell: a hint, a failure, a wait, a notice, or what a
// sound is called and its cover.
Rectangle {
    id: area

    required property var session
    required property color warning
    property alias film: film
    readonly property bool tells: session.headline !== ""

    color: "black"

    Video {
        id: film

        anchors.fill: parent
        player: area.session.player
    }

    component Lines: Column {
        property alias large: first.text
        property alias small: second.text

        width: parent.width - 32
        x: 16
        spacing: 6

        Text {
            id: first

            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideMiddle
            textFormat: Text.PlainText
            color: "white"
            font.pointSize: Application.font.pointSize * 1.5
        }
        Text {
            id: second

            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
            color: "#d5dae3"
        }
    }

    Lines {
        anchors.verticalCenter: parent.verticalCenter
        visible: area.tells
        large: area.session.headline
        small: area.session.details
    }

    Item {
        anchors.fill: parent
        visible: area.session.soundOnly && !area.tells

        Image {
            readonly property real side: Math.min(parent.width - 32, parent.height - 102, 480)

            anchors.horizontalCenter: parent.horizontalCenter
            y: (parent.height - 70 - height) / 2
            width: side
            height: side
            visible: side > 0
            fillMode: Image.PreserveAspectFit
            source: area.session.coverSerial ? "image://host/cover/" + area.session.coverSerial : "image://host/note"
            sourceSize.height: area.session.coverSerial ? 0 : 240
        }
        Lines {
            y: parent.height - 78
            large: area.session.title
            small: area.session.artist
        }
    }

    Rectangle {
        x: 16
        y: 16
        width: Math.min(notice.implicitWidth + 24, parent.width - 32)
        height: notice.implicitHeight + 12
        radius: 6
        visible: area.session.notice !== ""
        color: area.session.warns ? area.warning : "#dc1f2937"

        Text {
            id: notice

            anchors.centerIn: parent
            width: Math.min(implicitWidth, area.width - 56)
            elide: Text.ElideMiddle
            textFormat: Text.PlainText
            color: "white"
            text: area.session.notice
        }
    }

    MouseArea {
        anchors.fill: parent
        cursorShape: area.session.controlsShown ? Qt.ArrowCursor : Qt.BlankCursor
        onDoubleClicked: area.session.fullScreen = !area.session.fullScreen
        onWheel: wheel => area.session.changeVolume(wheel.angleDelta.y > 0 ? 1 : -1)
    }
}
