pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// The play list: a double click plays an entry, the button takes it out.
ListView {
    id: list

    required property var session

    clip: true
    model: session.playlist
    currentIndex: session.entry
    ScrollBar.vertical: ScrollBar {}

    delegate: ItemDelegate {
        id: entry

        required property int index
        required property string title

        width: ListView.view.width
        text: title
        highlighted: ListView.isCurrentItem
        focusPolicy: Qt.NoFocus
        onDoubleClicked: list.session.playEntry(index)

        ToolButton {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: entry.hovered
            focusPolicy: Qt.NoFocus
            text: "\u2715"
            onClicked: list.session.removeEntry(entry.index)
        }
    }

    Label {
        anchors.centerIn: parent
        visible: list.count === 0
        text: qsTr("Drop files here")
        color: palette.placeholderText
    }
}
