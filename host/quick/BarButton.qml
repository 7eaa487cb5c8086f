import QtQuick
import QtQuick.Controls

// A button for a command, with its drawing; or for what a click on it does.
ToolButton {
    id: button

    property var command: null
    property string drawing: command?.drawing ?? ""

    implicitWidth: 32
    implicitHeight: 32
    flat: true
    focusPolicy: Qt.NoFocus // the keys belong to the commands
    enabled: command?.enabled ?? true
    checked: command?.checked ?? false
    icon.source: "image://host/" + drawing
    icon.width: 20
    icon.height: 20
    icon.color: palette.buttonText
    ToolTip.text: command?.label ?? text
    ToolTip.visible: hovered
    ToolTip.delay: 700
    onClicked: command?.trigger()
}
