#include "HostProgram.h"
#include "MainWindow.h"
#include "WidgetStage.h"

#include <QtWidgets/QApplication>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    HostProgram program(QStringLiteral("Media player in a window of Qt widgets."));
    return program.run(
        [](const PluginLibrary &plugin) { return std::make_unique<WidgetStage>(plugin); },
        [](Session &session) { return std::make_unique<MainWindow>(session); });
}
