import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// Buttons, the seek slider with its times, and the volume of the current player.
RowLayout {
    id: bar

    required property var session
    readonly property var player: session.player

    function clock(seconds) {
        const pad = n => n < 10 ? "0" + n : n;
        const whole = Math.floor(seconds);
        const minutes = Math.floor(whole / 60);
        return minutes < 60 ? minutes + ":" + pad(whole % 60) : Math.floor(minutes / 60) + ":" + pad(minutes % 60) + ":" + pad(whole % 60);
    }

    component BarButton: ToolButton {
        focusPolicy: Qt.NoFocus // the keys belong to the shortcuts
    }

    spacing: 2

    BarButton {
        text: "\u25C0\u25C0"
        onClicked: bar.session.playEntry(bar.session.entry - 1)
    }
    BarButton {
        text: bar.player.playing ? "\u275A\u275A" : "\u25B6"
        onClicked: bar.session.togglePlaying()
    }
    BarButton {
        text: "\u25A0"
        onClicked: bar.player.stop()
    }
    BarButton {
        text: "\u25B6\u25B6"
        onClicked: bar.session.playEntry(bar.session.entry + 1)
    }

    Slider {
        id: seekSlider

        Layout.fillWidth: true
        Layout.leftMargin: 6
        Layout.rightMargin: 6
        focusPolicy: Qt.NoFocus
        to: Math.max(bar.player.duration, 0.001)
        onMoved: bar.player.seek(value)

        Binding on value {
            value: bar.player.position
            when: !seekSlider.pressed
        }
    }

    Label {
        text: bar.clock(bar.player.position) + " / " + bar.clock(bar.player.duration)
    }

    BarButton {
        text: "\u266A"
        checkable: true
        font.strikeout: bar.player.muted
        checked: bar.player.muted
        onToggled: bar.player.muted = checked
    }
    Slider {
        Layout.preferredWidth: 100
        Layout.rightMargin: 6
        focusPolicy: Qt.NoFocus
        value: bar.player.volume
        onMoved: bar.player.volume = value
    }
}
