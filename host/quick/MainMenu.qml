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
            height: modelData ? 22 : 7
            rightPadding: hint.width + 24
            onTriggered: modelData.trigger()

            Label {
                id: hint

                anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: item.modelData?.hint ?? ""
                opacity: 0.6
            }
            Rectangle {
                anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: 4 }
                height: item.modelData ? 0 : 1
                color: palette.mid
            }
        }
        // What is opened again comes before the last, which ends the program.
        onObjectAdded: (index, object) => object.modelData?.objectName === "quit" ? menu.addItem(object) : menu.insertItem(index, object)
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
