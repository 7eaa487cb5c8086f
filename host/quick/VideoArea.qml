import QtQuick
import QtQuick.Layouts

// The place of one player's picture. The plug-in puts the picture into the item "place".
Rectangle {
    id: area

    required property var player
    required property var places
    property bool current: false
    property bool placed: false

    signal clicked
    signal doubleClicked

    function givePlace() {
        if (placed || place.width <= 0 || place.height <= 0)
            return;
        placed = true;
        places.give(player, place);
    }

    Layout.fillWidth: true
    Layout.fillHeight: true
    Layout.minimumWidth: 160
    Layout.minimumHeight: 90
    color: "black"

    Text {
        anchors.centerIn: parent
        visible: area.placed && !area.player.shown
        color: "lightgray"
        text: area.player.hasControl ? qsTr("hidden") : qsTr("no control")
    }

    // Each player has a parent item of its own: the plug-in moves the parent of the item it is
    // given to (0, 0).
    Item {
        anchors.fill: parent

        Item {
            id: place

            anchors.fill: parent
            clip: true // a cropped picture is larger than its place
            onWidthChanged: area.givePlace()
            onHeightChanged: area.givePlace()
        }
    }

    Rectangle {
        anchors.fill: parent
        visible: area.current
        color: "transparent"
        border.color: palette.highlight
        border.width: 2
    }

    MouseArea {
        anchors.fill: parent
        onClicked: area.clicked()
        onDoubleClicked: area.doubleClicked()
    }
}
