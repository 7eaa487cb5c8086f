pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// The play list: a double click plays an entry, the button takes it out.
Rectangle {
    id: panel

    required property var session

    color: palette.base

    ListView {
        anchors.fill: parent
        anchors.margins: 2
        clip: true
        model: panel.session.list
        currentIndex: panel.session.list.current
        ScrollBar.vertical: ScrollBar {}

        delegate: ItemDelegate {
            id: entry

            required property int index
            required property string title
            required property string problem
            required property bool current

            width: ListView.view.width
            height: 28
            focusPolicy: Qt.NoFocus
            highlighted: current
            onDoubleClicked: panel.session.playRow(index)
            ToolTip.text: problem
            ToolTip.visible: hovered && problem !== ""

            contentItem: Label {
                text: entry.title
                elide: Text.ElideMiddle
                textFormat: Text.PlainText
                font.bold: entry.current
                color: entry.current ? palette.highlightedText : entry.problem ? panel.session.warning : palette.text
            }
            BarButton {
                anchors.right: parent.right
                height: parent.height
                visible: entry.hovered
                text: "\u2715"
                display: AbstractButton.TextOnly
                onClicked: panel.session.removeRow(entry.index)
            }
        }
    }
}
