pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import MediaPlayer

// The record, the last answers and the switches.
Pane {
    id: panel

    required property var developer
    required property Video film

    component Switch: CheckBox { focusPolicy: Qt.NoFocus }

    component Cell: Label {
        height: 20
        elide: Text.ElideMiddle
        textFormat: Text.PlainText
        verticalAlignment: Text.AlignVCenter
    }

    component Rows: ListView {
        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        ScrollBar.vertical: ScrollBar {}
    }

    padding: 8
    bottomPadding: 0
    onVisibleChanged: developer.watching = visible

    ColumnLayout {
        anchors.fill: parent

        Switch {
            text: qsTr("Show the picture")
            checked: panel.film.visible
            onToggled: panel.film.visible = checked
        }
        Switch {
            text: qsTr("Hiding it pauses")
            onToggled: panel.film.whenHidden = checked ? Player.Pause : Player.GoOn
        }
        Switch {
            text: qsTr("Stretch it")
            onToggled: panel.film.fillMode = checked ? Video.Stretch : Video.PreserveAspectFit
        }
        Switch {
            text: qsTr("Trace on standard output")
            checked: panel.developer.tracing
            onToggled: panel.developer.tracing = checked
        }
        Rows {
            Layout.preferredHeight: 3
            model: panel.developer.record
            delegate: Row {
                required property string name
                required property string value

                Cell { width: 130; text: parent.name }
                Cell { width: panel.availableWidth - 130; text: parent.value }
            }
        }
        Rows {
            Layout.preferredHeight: 1
            model: panel.developer.answers
            delegate: Cell {
                required property string display

                text: display
            }
        }
    }
}
