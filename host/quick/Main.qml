pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts

// The Qt Quick host's window: the grid of players, the play list and the tools.
ApplicationWindow {
    id: window

    required property var session
    required property var places
    readonly property var player: session.player
    readonly property bool fullScreen: visibility === Window.FullScreen

    function toggleFullScreen() {
        if (fullScreen)
            showNormal();
        else
            showFullScreen();
    }

    function changeVolume(by) {
        player.volume = Math.min(1, Math.max(0, player.volume + by));
    }

    visible: true
    width: 1200
    height: 680
    title: player.uri ? qsTr("%1 - Media player host").arg(player.uri.split("/").pop()) : qsTr("Media player host")

    menuBar: MenuBar {
        visible: !window.fullScreen

        Menu {
            title: qsTr("&File")
            Action {
                text: qsTr("&Open files...")
                shortcut: "Ctrl+O"
                onTriggered: fileDialog.open()
            }
            Action {
                text: qsTr("Open &address...")
                shortcut: "Ctrl+L"
                onTriggered: addressDialog.open()
            }
            Action {
                text: qsTr("&Quit")
                shortcut: "Ctrl+Q"
                onTriggered: window.close()
            }
        }
        Menu {
            title: qsTr("&Playback")
            Action {
                text: window.player.playing ? qsTr("&Pause") : qsTr("&Play")
                shortcut: "Space"
                onTriggered: window.session.togglePlaying()
            }
            Action {
                text: qsTr("&Stop")
                shortcut: "S"
                onTriggered: window.player.stop()
            }
            Action {
                text: qsTr("P&revious")
                shortcut: "P"
                onTriggered: window.session.playEntry(window.session.entry - 1)
            }
            Action {
                text: qsTr("&Next")
                shortcut: "N"
                onTriggered: window.session.playEntry(window.session.entry + 1)
            }
            MenuSeparator {}
            Action {
                text: qsTr("&Back 5 seconds")
                shortcut: "Left"
                onTriggered: window.session.seekBy(-5)
            }
            Action {
                text: qsTr("&Forward 5 seconds")
                shortcut: "Right"
                onTriggered: window.session.seekBy(5)
            }
            Action {
                text: qsTr("To the &start")
                shortcut: "Home"
                onTriggered: window.player.seek(0)
            }
            MenuSeparator {}
            Action {
                text: qsTr("L&ouder")
                shortcut: "Up"
                onTriggered: window.changeVolume(0.05)
            }
            Action {
                text: qsTr("So&fter")
                shortcut: "Down"
                onTriggered: window.changeVolume(-0.05)
            }
            Action {
                text: qsTr("&Mute")
                shortcut: "M"
                checkable: true
                checked: window.player.muted
                onTriggered: window.player.muted = !window.player.muted
            }
        }
        Menu {
            title: qsTr("P&layer")
            Action {
                text: qsTr("&Add")
                shortcut: "+"
                onTriggered: window.session.addPlayer()
            }
            Action {
                text: qsTr("&Remove")
                shortcut: "-"
                onTriggered: window.session.removePlayer()
            }
            MenuSeparator {}
            Action {
                text: window.player.shown ? qsTr("&Hide the picture") : qsTr("S&how the picture")
                shortcut: "H"
                enabled: window.player.hasControl
                onTriggered: window.player.shown = !window.player.shown
            }
            Action {
                text: window.player.hasControl ? qsTr("&Destroy the control") : qsTr("&Create the control")
                shortcut: "D"
                onTriggered: window.player.hasControl ? window.player.destroyControl() : window.player.createControl()
            }
        }
        Menu {
            title: qsTr("&View")
            Action {
                text: qsTr("&Full screen")
                shortcut: "F"
                onTriggered: window.toggleFullScreen()
            }
            Action {
                text: qsTr("&Tools")
                shortcut: "Ctrl+T"
                checkable: true
                checked: tools.shown
                onTriggered: tools.shown = !tools.shown
            }
            Action {
                text: qsTr("T&race on standard output")
                shortcut: "T"
                checkable: true
                checked: window.session.trace
                onTriggered: window.session.trace = !window.session.trace
            }
        }
    }

    Shortcut {
        sequences: ["Esc", "F11"]
        onActivated: window.fullScreen ? window.showNormal() : window.showFullScreen()
    }

    FileDialog {
        id: fileDialog

        title: qsTr("Open media")
        fileMode: FileDialog.OpenFiles
        nameFilters: [qsTr("Media (*.mp4 *.mkv *.webm *.avi *.mov *.mpg *.ogv *.mp3 *.ogg *.opus *.flac *.wav *.m4a)"), qsTr("All files (*)")]
        onAccepted: window.session.open(selectedFiles)
    }

    Dialog {
        id: addressDialog

        anchors.centerIn: parent
        title: qsTr("Open address")
        standardButtons: Dialog.Ok | Dialog.Cancel
        onOpened: address.forceActiveFocus()
        onAccepted: window.session.open([address.text])

        TextField {
            id: address

            implicitWidth: 400
            onAccepted: addressDialog.accept()
        }
    }

    RowLayout {
        anchors.fill: parent
        spacing: 4

        ColumnLayout {
            spacing: 0

            GridLayout {
                id: grid

                columns: Math.ceil(Math.sqrt(players.count))
                columnSpacing: 4
                rowSpacing: 4

                Repeater {
                    id: players

                    model: window.session.players

                    VideoArea {
                        required property int index

                        places: window.places
                        current: players.count > 1 && index === window.session.current
                        onClicked: window.session.current = index
                        onDoubleClicked: window.toggleFullScreen()
                    }
                }
            }

            TransportBar {
                Layout.fillWidth: true
                session: window.session
            }
        }

        ColumnLayout {
            id: tools

            property bool shown: true

            Layout.preferredWidth: 340
            Layout.fillWidth: false
            visible: shown && !window.fullScreen

            PlayListPanel {
                Layout.fillWidth: true
                Layout.preferredHeight: 110
                session: window.session
            }
            ControlPanel {
                Layout.fillHeight: false
                Layout.margins: 6
                player: window.player
            }
            RecordPanel {
                Layout.fillWidth: true
                Layout.fillHeight: true
                session: window.session
            }
        }
    }

    DropArea {
        anchors.fill: parent
        onDropped: drop => window.session.open(drop.urls)
    }

    footer: Label {
        visible: !window.fullScreen
        leftPadding: 6
        text: window.session.message
    }
}
