pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import QtQml

// The Qt Quick host's window: the film, the bar below it, and two panels beside it. In full screen
// the bar lies over the film.
ApplicationWindow {
    id: window

    required property var session

    minimumWidth: 320
    minimumHeight: 200
    title: session.title ? qsTr("%1 - Media player").arg(session.title) : qsTr("Media player")

    Instantiator {
        model: window.session.commands.all.filter(command => command)

        Shortcut {
            required property var modelData

            sequences: modelData.keys
            enabled: modelData.enabled
            onActivated: modelData.trigger()
        }
    }

    Connections {
        target: window.session.commands

        function onFilesWanted() { fileDialog.open(); }
        function onFolderWanted() { folderDialog.open(); }
        function onAddressWanted() { addressDialog.open(); }
        function onQuitWanted() { window.close(); }
    }

    RowLayout {
        anchors.fill: parent
        anchors.bottomMargin: window.session.fullScreen ? 0 : transport.height
        spacing: 0

        FilmArea {
            id: area

            Layout.fillWidth: true
            Layout.fillHeight: true
            session: window.session
        }
        PlayListPanel {
            Layout.preferredWidth: Math.min(240, window.width * 0.45)
            Layout.fillHeight: true
            visible: window.session.listShown && !window.session.fullScreen
            session: window.session
        }
        DeveloperPanel {
            Layout.preferredWidth: Math.min(300, window.width * 0.45)
            Layout.fillHeight: true
            visible: window.session.developerShown && !window.session.fullScreen
            developer: window.session.developer
            film: area.film
        }
    }

    TransportBar {
        id: transport

        session: window.session
        visible: !window.session.fullScreen || window.session.controlsShown
        width: parent.width
        anchors.bottom: parent.bottom
        onMenuWanted: menu.popup()
    }

    MainMenu {
        id: menu

        session: window.session
    }

    TapHandler { acceptedButtons: Qt.RightButton; onTapped: menu.popup() }
    DropArea { anchors.fill: parent; onDropped: drop => window.session.open(drop.urls) }

    FileDialog {
        id: fileDialog

        title: qsTr("Open files")
        fileMode: FileDialog.OpenFiles
        currentFolder: window.session.folder
        nameFilters: window.session.fileFilters
        onAccepted: window.session.open(selectedFiles)
    }

    FolderDialog {
        id: folderDialog

        title: qsTr("Open folder")
        currentFolder: window.session.folder
        onAccepted: window.session.open([selectedFolder])
    }

    Dialog {
        id: addressDialog

        anchors.centerIn: parent
        width: Math.min(420, window.width - 20)
        title: qsTr("Open address")
        standardButtons: Dialog.Ok | Dialog.Cancel
        onOpened: address.forceActiveFocus()
        onAccepted: window.session.openTyped(address.text)

        TextField {
            id: address

            width: parent.width
            onAccepted: addressDialog.accept()
        }
    }
}
