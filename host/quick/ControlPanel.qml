pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// How the current player's picture lies in its place, and what hiding does to it.
GridLayout {
    id: panel

    required property var player

    function setMargin(index, pixels) {
        const crop = Array.from(player.crop);
        crop[index] = pixels;
        player.setCrop(crop[0], crop[1], crop[2], crop[3]);
    }

    component Number: SpinBox {
        Layout.fillWidth: true
        editable: true
        from: -2000
        to: 2000
    }

    component Margin: Number {
        required property int margin

        Layout.preferredWidth: 90
        value: panel.player.crop[margin]
        onValueModified: panel.setMargin(margin, value)
    }

    columns: 2

    Label { text: qsTr("Crop") }
    GridLayout {
        columns: 3
        columnSpacing: 2
        rowSpacing: 2
        Margin { margin: 0; Layout.row: 1; Layout.column: 0 }
        Margin { margin: 1; Layout.row: 0; Layout.column: 1 }
        Margin { margin: 2; Layout.row: 1; Layout.column: 2 }
        Margin { margin: 3; Layout.row: 2; Layout.column: 1 }
    }

    Label { text: qsTr("Opacity") }
    Slider {
        Layout.fillWidth: true
        focusPolicy: Qt.NoFocus
        value: panel.player.opacity
        onMoved: panel.player.opacity = value
    }

    Label { text: qsTr("Mirror") }
    RowLayout {
        CheckBox {
            text: qsTr("sideways")
            focusPolicy: Qt.NoFocus
            checked: panel.player.flips & 1
            onToggled: panel.player.setTransform(panel.player.flips ^ 1, panel.player.angle)
        }
        CheckBox {
            text: qsTr("upright")
            focusPolicy: Qt.NoFocus
            checked: panel.player.flips & 2
            onToggled: panel.player.setTransform(panel.player.flips ^ 2, panel.player.angle)
        }
    }

    Label { text: qsTr("Rotate") }
    Number {
        from: -360
        to: 360
        stepSize: 15
        value: panel.player.angle
        onValueModified: panel.player.setTransform(panel.player.flips, value)
    }

    Label { text: qsTr("Aspect") }
    CheckBox {
        text: qsTr("keep the picture's shape")
        focusPolicy: Qt.NoFocus
        checked: panel.player.keepAspect
        onToggled: panel.player.keepAspect = checked
    }

    Label { text: qsTr("Control") }
    RowLayout {
        CheckBox {
            text: qsTr("hiding pauses")
            focusPolicy: Qt.NoFocus
            checked: panel.player.pauseOnHide
            onToggled: panel.player.pauseOnHide = checked
        }
        CheckBox {
            text: qsTr("showing resumes")
            focusPolicy: Qt.NoFocus
            checked: panel.player.resumeOnShow
            onToggled: panel.player.resumeOnShow = checked
        }
    }
}
