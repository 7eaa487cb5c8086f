import QtQuick
import QtQuick.Controls

// A button for a command, with its drawing; or for what a click on it does.
ToolButton {
    id: button

    property string name
    readonly property var window: ApplicationWindow.window
    readonly property var command: name ? window.session.commands.named(name) : null
    property string drawing: command?.drawing ?? ""

    implicitWidth: 32
    implicitHeight: 32
    focusPolicy: Qt.NoFocus // the keys belong to the commands
    enabled: command?.enabled ?? true
    checked: command?.checked ?? false
    icon { source: "image://host/" + drawing; width: 20; height: 20; color: palette.buttonText }
    ToolTip.text: command?.label ?? text
    ToolTip.visible: hovered
    ToolTip.delay: 700
    onClicked: command?.trigger()
}
