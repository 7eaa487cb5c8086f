pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// Everything that can be done, and what was opened last.
Menu {
    id: menu

    required property var session

    width: 260

    // A line between two groups is an item without a command.
    Instantiator {
        model: menu.session.commands.all.filter(command => !command || command.listed)
        delegate: MenuItem {
            id: item

            required property var modelData

            text: modelData?.text ?? ""
            enabled: modelData?.enabled ?? false
            checkable: modelData?.checkable ?? false
            checked: modelData?.checked ?? false
            height: modelData ? implicitHeight : 7
            rightPadding: hint.width + 24
            onTriggered: modelData.trigger()

            Label {
                id: hint

                anchors.right: parent.right
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                text: item.modelData?.hint ?? ""
                opacity: 0.6
            }
            Rectangle {
                anchors.centerIn: parent
                width: parent.width - 8
                height: 1
                visible: !item.modelData
                color: palette.mid
            }
        }
        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }

    Menu {
        id: recent

        title: qsTr("Open r&ecent")

        Instantiator {
            model: menu.session.recent
            delegate: MenuItem {
                required property string modelData
                required property int index

                text: modelData
                onTriggered: menu.session.openRecent(index)
            }
            onObjectAdded: (index, object) => recent.insertItem(index, object)
            onObjectRemoved: (index, object) => recent.removeItem(object)
        }
    }
}
