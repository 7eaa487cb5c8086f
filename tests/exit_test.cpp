#include "pipeline/stateChange.h"
#include "tests/interleaving.h"

#include <QtCore/QProcess>
#include <QtWidgets/QApplication>

#include <cstdlib>

// A process that ends with a player in it, in every way that hosts end. The test runs itself as
// that host.

namespace
{

constexpr int exitStatus = 77; // the number of no signal

const struct {
    const char *name;
    Host::Kind kind;
    void (*reach)(Host &);
} situations[] = {
    {"nothing loaded", Host::Quick, [](Host &host) { host.open(""); }},
    {"playing in a widget", Host::Widget, openAndPlay},
    {"playing", Host::Quick, openAndPlay},
    {"left behind by its window", Host::Widget,
     [](Host &host) {
         enableWorkaround = 1;
         openAndPlay(host);
         host.control->saveObject();
         host.widget.reset();
     }},
    {"end of stream", Host::Quick,
     [](Host &host) {
         openAndPlay(host);
         postEnd(host.view()->pipeline);
     }},
};

enum Ending { ReturnFromMain, ExitWithALeakedApplication, StaticApplication };
constexpr const char *endingNames[] = {"return from main", "exit() with a leaked application",
                                       "static application"};

int endAs(int ending, int situation, int argc, char **argv)
{
    static Host *host = nullptr; // hosts forget to delete it
    std::atexit([] { // comes after what the library does at exit
        const MediaPlayerView *const left = host->view();
        if (left && left->pipeline && isAboveReady(left->pipeline))
            std::_Exit(EXIT_FAILURE);
    });
    std::unique_ptr<QApplication> local;
    if (ending == StaticApplication)
        static QApplication application(argc, argv);
    else
        local = std::make_unique<QApplication>(argc, argv);

    host = new Host(situations[situation].kind);
    situations[situation].reach(*host);
    if (ending == ExitWithALeakedApplication) {
        if (host->window)
            host->window->hide(); // Qt's render thread does not survive exit() in a frame
        std::exit(exitStatus);
    }
    if (ending == StaticApplication) {
        // Qt itself does not survive this with a window that has drawn.
        host->window.reset();
        host->widget.reset();
    }
    local.reset();
    return ending == ReturnFromMain && host->view() ? EXIT_FAILURE : exitStatus;
}

} // namespace

class ExitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ends_data()
    {
        QTest::addColumn<QStringList>("arguments");
        for (const int ending : {ReturnFromMain, ExitWithALeakedApplication, StaticApplication}) {
            for (int situation = 0; situation < int(std::size(situations)); ++situation)
                QTest::addRow("%s: %s", situations[situation].name, endingNames[ending])
                    << QStringList {QStringLiteral("--end"), QString::number(ending),
                                    QString::number(situation)};
        }
    }
    void ends()
    {
        QFETCH(QStringList, arguments);
        QProcess host;
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(QCoreApplication::applicationFilePath(), arguments);
        QVERIFY2(host.waitForFinished(3 * patience), "the process did not end");
        QString said = QString::fromUtf8(host.readAll());
        // What Qt says by itself of an application object that outlives its static objects.
        said.remove(QRegularExpression(QStringLiteral("(Qt warning: )?QThreadStorage: .*\n")));
        QCOMPARE(said, QString());
        QCOMPARE(host.exitCode(), exitStatus);
    }
};

int main(int argc, char **argv)
{
    if (argc == 4 && !qstrcmp(argv[1], "--end")) {
        qunsetenv("GST_TRACERS");
        return endAs(atoi(argv[2]), atoi(argv[3]), argc, argv);
    }
    return runPlayerTest(argc, argv, [](int count, char **values) {
        ExitTest test;
        return QTest::qExec(&test, count, values);
    });
}
#include "exit_test.moc"
