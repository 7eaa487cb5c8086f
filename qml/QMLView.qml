import QtQuick

// The scene of a widget host's quick widget: nothing but the place for the picture.
Item {
    anchors.fill: parent
}
