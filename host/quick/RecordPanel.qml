pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// The fields of the current player's record, as they are now.
ListView {
    id: fields

    required property var session

    clip: true
    model: session.record
    ScrollBar.vertical: ScrollBar {}

    delegate: Rectangle {
        id: field

        required property int index
        required property string name
        required property string value

        width: ListView.view.width
        height: 20
        color: index % 2 ? palette.alternateBase : palette.base

        Label {
            x: 6
            anchors.verticalCenter: parent.verticalCenter
            text: field.name
        }
        Label {
            x: 130
            width: parent.width - x - 14
            anchors.verticalCenter: parent.verticalCenter
            elide: Text.ElideMiddle
            text: field.value
        }
    }
}
