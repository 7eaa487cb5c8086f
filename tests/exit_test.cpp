#include "tests/interleaving.h"

#include <QtCore/QProcess>
#include <QtWidgets/QApplication>

#include <cstdlib>

// A process that ends with a player in it, in every way that hosts end. The test runs itself as
// that host.

namespace
{

constexpr int exitStatus = 7;

struct Situation {
    const char *name;
    void (*reach)(Host &);
};

bool came(const std::function<bool()> &condition)
{
    if (!QTest::qWaitFor(condition, patience))
        std::fputs("the situation did not come\n", stderr);
    return true;
}

void playing(Host &host)
{
    host.open(media("quadrants.webm"));
    came([&] { return host.state() == GST_STATE_PAUSED; });
    host.play(GST_STATE_PLAYING);
    came([&] { return host.position() > 0; });
}

const Situation situations[] = {
    {"nothing loaded", [](Host &host) { host.open(""); }},
    {"item without a window",
     [](Host &host) {
         host.create();
         host.setFileName(media("quadrants.webm") + '\0');
         host.registerRecord();
     }},
    {"paused",
     [](Host &host) {
         host.open(media("quadrants.webm"));
         came([&] { return host.state() == GST_STATE_PAUSED; });
     }},
    {"playing", playing},
    {"left behind by its window",
     [](Host &host) {
         enableWorkaround = 1;
         playing(host);
         host.control->saveObject();
         host.widget.reset();
     }},
    {"parked",
     [](Host &host) {
         playing(host);
         host.control->SysNativeControlShow(0);
         came([&] { return host.record.attached == 0; });
         host.destroyControl();
     }},
    {"end of stream",
     [](Host &host) {
         playing(host);
         postEnd(host.view()->pipeline);
     }},
    {"command queued",
     [](Host &host) {
         playing(host);
         storeRelease(host.record.execute, 1);
         blockUntil([&] { return loadAcquire(host.view()->invokePending); });
     }},
};

/// Everything that a host may forget to delete.
Host *reach(Host::Kind kind, const char *name)
{
    auto *host = new Host(kind);
    for (const Situation &situation : situations) {
        if (!qstrcmp(situation.name, name))
            situation.reach(*host);
    }
    return host;
}

int endAs(const QByteArray &ending, Host::Kind kind, const char *situation, int argc, char **argv)
{
    if (ending == "static application") {
        // Qt itself does not survive this with a window that has drawn.
        static QApplication application(argc, argv);
        Host *host = reach(kind, situation);
        host->window.reset();
        host->widget.reset();
        return exitStatus;
    }
    if (ending == "exit() with a leaked application") {
        new QApplication(argc, argv);
        reach(kind, situation);
        std::exit(exitStatus);
    }
    QApplication application(argc, argv);
    Host *host = reach(kind, situation);
    if (ending == "hosts deleted, then the application")
        delete host;
    if (ending == "quit")
        QMetaObject::invokeMethod(
            &application, [] { QCoreApplication::exit(exitStatus); }, Qt::QueuedConnection);
    return ending == "quit" ? QApplication::exec() : exitStatus;
}

} // namespace

class ExitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ends_data()
    {
        QTest::addColumn<QString>("ending");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("situation");
        const auto add = [](const char *ending, int kind, const char *situation) {
            QTest::addRow("%s: %s, %s", kind == Host::Widget ? "widget" : "quick", situation,
                          ending)
                << QString::fromLatin1(ending) << kind << QString::fromLatin1(situation);
        };
        for (const Situation &situation : situations)
            add("return from main", Host::Widget, situation.name);
        for (const char *ending : {"return from main", "quit", "exit() with a leaked application",
                                   "static application", "hosts deleted, then the application"}) {
            add(ending, Host::Quick, "playing");
            add(ending, Host::Quick, "parked");
        }
        for (const char *ending : {"exit() with a leaked application", "static application"}) {
            add(ending, Host::Widget, "playing");
            add(ending, Host::Widget, "left behind by its window");
            add(ending, Host::Quick, "end of stream");
        }
    }
    void ends()
    {
        QFETCH(QString, ending);
        QFETCH(int, kind);
        QFETCH(QString, situation);
        QProcess host;
        host.start(QCoreApplication::applicationFilePath(),
                   {QStringLiteral("--end"), ending, QString::number(kind), situation});
        QVERIFY2(host.waitForFinished(patience), "the process did not end");
        QByteArrayList said = host.readAllStandardError().split('\n');
        said.removeIf([](const QByteArray &line) {
            // What Qt says by itself of an application object that outlives its static objects.
            return line.isEmpty() || line.startsWith("QThreadStorage: Thread ");
        });
        QCOMPARE(said, QByteArrayList());
        QCOMPARE(host.readAllStandardOutput(), QByteArray());
        QCOMPARE(host.exitStatus(), QProcess::NormalExit);
        QCOMPARE(host.exitCode(), exitStatus);
    }
};

int main(int argc, char **argv)
{
    if (argc == 5 && !qstrcmp(argv[1], "--end")) {
        qunsetenv("GST_TRACERS");
        return endAs(argv[2], Host::Kind(atoi(argv[3])), argv[4], argc, argv);
    }
    return runPlayerTest(argc, argv, [](int count, char **values) {
        ExitTest test;
        return QTest::qExec(&test, count, values);
    });
}
#include "exit_test.moc"
