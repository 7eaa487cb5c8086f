// One measure of one subject in one process; the figures go to standard output as JSON.
// bench/run starts it: mediaplayer-bench SUBJECT MEASURE MEDIA LIBRARY SIZE ROUNDS SECONDS

#include "Bench.h"
#include "pluginSubject.h"

#include <QtCore/QHash>
#include <QtCore/QJsonDocument>
#include <QtWidgets/QApplication>

#include <unistd.h>

#include <cstdio>

int main(int argc, char **argv)
{
    // As hosts do that move pictures between windows; every subject gets it.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    const QApplication application(argc, argv);

    const QHash<QString, QJsonObject (*)(Stage &)> measures {
        {QStringLiteral("loads"), measureLoads},
        {QStringLiteral("timeline"), measureTimeline},
        {QStringLiteral("playing"), measurePlaying},
        {QStringLiteral("memory"), measureMemory},
        {QStringLiteral("cache"), measureCache},
        {QStringLiteral("players"), measureManyPlayers},
        {QStringLiteral("commands"), measureCommands},
        {QStringLiteral("parked"), measureParked},
        {QStringLiteral("holds"), measureHolds},
        {QStringLiteral("start"), measureStart},
    };
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 8 || !measures.contains(words[2]))
        fail(QStringLiteral("usage: SUBJECT MEASURE MEDIA LIBRARY SIZE ROUNDS SECONDS"));
    const Setup setup {words[1],         words[4],         words[3],           words[2],
                       words[5].toInt(), words[6].toInt(), words[7].toDouble()};

    Stage stage(setup);
    const auto start = Clock::now();
    if (setup.subject == QLatin1String("plugin"))
        PluginSubject::loadLibrary(setup.library);
    const double loading = since(start);
    QJsonObject figures = measures[setup.measure](stage);
    figures[QStringLiteral("loading")] = loading;

    std::puts(QJsonDocument(figures).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
    _exit(0); // the figures are out; ending the subjects is measured elsewhere or not at all
}
