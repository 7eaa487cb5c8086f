#include "HostProgram.h"
#include "QuickStage.h"
#include "QuickWindow.h"

#include <QtGui/QGuiApplication>
#include <QtQuickControls2/QQuickStyle>

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Fusion"));
    HostProgram program(QStringLiteral("Media player in a Qt Quick window."));
    return program.run(
        [](const PluginLibrary &plugin) { return std::make_unique<QuickStage>(plugin); },
        [](Session &session) { return std::make_unique<QuickWindow>(session); });
}
