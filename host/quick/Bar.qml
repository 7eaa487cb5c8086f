pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls

// A slider that goes to where it is clicked, follows the pointer that is held down, and tells what
// is under one that is not. What is beyond the mark is warned of.
Item {
    id: bar

    property real value: 0
    property real mark: 1
    property color warning
    property string text
    readonly property real pointed: pointer.part
    readonly property real shown: pointer.pressed ? pointer.part : value

    signal moved(part: real)

    component Stretch: Rectangle {
        property real from: 0
        property real to: 1

        x: 8 + from * (bar.width - 16)
        width: Math.max(0, to - from) * (bar.width - 16)
        height: 4
        radius: 2
        anchors.verticalCenter: parent.verticalCenter
    }

    implicitHeight: 20
    opacity: enabled ? 1 : 0.5

    Stretch { color: "#d5dae3" }
    Stretch { color: palette.highlight; to: Math.min(bar.shown, bar.mark) }
    Stretch { color: bar.warning; from: bar.mark; to: bar.shown }
    Rectangle {
        x: 8 + bar.shown * (bar.width - 16) - width / 2
        width: 13
        height: width
        radius: width / 2
        anchors.verticalCenter: parent.verticalCenter
        color: bar.shown > bar.mark ? bar.warning : palette.highlight
    }

    MouseArea {
        id: pointer

        readonly property real part: Math.min(1, Math.max(0, (mouseX - 8) / (width - 16)))

        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onPressed: bar.moved(part)
        onPositionChanged: {
            if (pressed)
                bar.moved(part);
        }
    }

    ToolTip {
        x: Math.min(Math.max(pointer.mouseX - width / 2, 0), bar.width - width)
        y: -height - 2
        visible: bar.enabled && (pointer.containsMouse || pointer.pressed)
        text: bar.text
    }
}
