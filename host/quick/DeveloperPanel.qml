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

    component Switch: CheckBox {
        focusPolicy: Qt.NoFocus
    }

    component Setting: RowLayout {
        property alias text: name.text
        property alias value: slider.value
        property alias to: slider.to

        signal moved(value: real)

        Label {
            id: name

            Layout.preferredWidth: 60
        }
        Slider {
            id: slider

            Layout.fillWidth: true
            focusPolicy: Qt.NoFocus
            onMoved: parent.moved(value)
        }
    }

    component Cell: Label {
        elide: Text.ElideMiddle
        textFormat: Text.PlainText
        verticalAlignment: Text.AlignVCenter
    }

    padding: 8
    bottomPadding: 0
    onVisibleChanged: developer.watching = visible

    ColumnLayout {
        anchors.fill: parent
        spacing: 4

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
        Setting {
            text: qsTr("Opacity")
            value: panel.developer.opacity
            onMoved: value => panel.developer.opacity = value
        }
        Setting {
            text: qsTr("Angle")
            to: 360
            value: panel.developer.angle
            onMoved: value => panel.developer.angle = value
        }

        ListView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredHeight: 3
            clip: true
            model: panel.developer.record
            ScrollBar.vertical: ScrollBar {}

            delegate: Rectangle {
                id: field

                required property int index
                required property string name
                required property string value

                width: ListView.view.width
                height: 20
                color: index % 2 ? palette.alternateBase : palette.base

                Cell { x: 4; height: 20; text: field.name }
                Cell { x: 130; height: 20; width: parent.width - x; text: field.value }
            }
        }
        ListView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredHeight: 1
            clip: true
            model: panel.developer.answers
            delegate: Cell {
                required property string display

                height: 20
                text: display
            }
        }
    }
}
