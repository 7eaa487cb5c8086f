#include "tests/interleaving.h"

#include <QtNetwork/QTcpServer>

#include <malloc.h>

namespace
{

/// The kinds of host with enableWorkaround off and on; for a Qt Quick host it decides only about
/// parking while a re-binding is pending.
enum Setting { Widget, WidgetWorkaround, Quick };
constexpr const char *settingNames[] = {"widget", "widget, workaround", "quick"};

Host hostIn(int setting)
{
    enableWorkaround = setting == WidgetWorkaround;
    return Host(setting == Quick ? Host::Quick : Host::Widget);
}

void addSettings(int first = Widget)
{
    QTest::addColumn<int>("setting");
    for (int setting = first; setting <= Quick; ++setting)
        QTest::newRow(settingNames[setting]) << setting;
}

void createAgain(Host &host)
{
    host.destroyControl();
    storeRelaxed(host.record.state, 0); // so that what is read next is the news of a player
    host.create();
    host.registerRecord();
}

using Step = void (*)(Host &);

/// What a player may be at when it ends.
const struct {
    const char *name;
    Step reach;
} situations[] = {
    {"nothing loaded", [](Host &host) { host.open("no URI"); }},
    {"loading", [](Host &host) { host.open(media("quadrants.webm")); }},
    {"no window on the screen",
     [](Host &host) {
         host.setShown(false);
         host.open(media("quadrants.webm"));
     }},
    {"preroll without an end",
     [](Host &host) {
         auto *const server = new QTcpServer(qApp); // takes connections and never says anything
         server->listen(QHostAddress::LocalHost);
         host.open("http://127.0.0.1:" + QByteArray::number(server->serverPort()) + "/a.webm");
         await("the preroll", [&] { return MediaPlayerView::isAboveReady(host.view()->pipeline); });
     }},
    {"playing", openAndPlay},
    {"error on its way to the scene",
     [](Host &host) {
         openAndPlay(host);
         postError(host.view()->pipeline);
         QVERIFY(blockUntil([&] { return loadRelaxed(host.record.error) == 1; }));
     }},
    {"restore queued",
     [](Host &host) {
         openAndPlay(host);
         hideAndPark(host);
         host.control->SysNativeControlShow(1);
         QVERIFY(blockUntil([&] { return loadAcquire(host.view()->invokePending); }));
     }},
};

enum ViewStays { No, WithoutControl, IfParked, Yes };
constexpr int nowhere = -1;

/// The ways to end a player. Each ends one that plays, in each setting; those that differ in who
/// ends the view meet every situation in one setting.
const struct {
    const char *name;
    int meetsAllIn;
    ViewStays stays;
    Step end;
} ways[] = {
    {"destroyed", Widget, WithoutControl, [](Host &host) { host.destroyControl(); }},
    {"saved", nowhere, Yes, [](Host &host) { host.control->saveObject(); }},
    {"window goes", Quick, No,
     [](Host &host) {
         host.widget.reset();
         host.window.reset();
     }},
    {"item goes", Quick, IfParked, [](Host &host) { delete host.view()->parentItem; }},
    {"control gone, item goes", nowhere, No,
     [](Host &host) {
         const QPointer<QQuickItem> item = host.view()->parentItem;
         host.destroyControl();
         delete item;
     }},
    {"registered three times, by two controls, scene ends", nowhere, No,
     [](Host &host) {
         host.registerRecord();
         host.control = CreateQML(nullptr, host.view()->parentItem, nullptr, 0, 0, 0, 0);
         host.registerRecord();
         QMetaObject::invokeMethod(host.view()->videoObject, "destruct");
     }},
    {"view deleted", WidgetWorkaround, No, [](Host &host) { delete host.view(); }},
};

} // namespace

class LifecycleTest : public QObject
{
    Q_OBJECT

private:
    // Those of players bear the process's own name, as some of Mesa's do.
    int m_othersThreads = 0;

    int playerThreads() const
    {
        int count = -m_othersThreads;
        for (QDirIterator tasks(QStringLiteral("/proc/self/task")); tasks.hasNext();) {
            QFile name(tasks.next() + QStringLiteral("/comm"));
            count += name.open(QIODevice::ReadOnly) && name.readAll() == "lifecycle_test\n";
        }
        return count;
    }

private Q_SLOTS:
    void initTestCase()
    {
        for (const int setting : {Widget, Quick}) {
            Host host = hostIn(setting);
            openAndPlay(host);
        }
        m_othersThreads = playerThreads();
    }
    void cleanup() { AWAIT_EQUAL(playerThreads(), 0); }

    void survivesItsControl_data() { addSettings(WidgetWorkaround); }
    void survivesItsControl()
    {
        QFETCH(int, setting);
        Host host = hostIn(setting);
        const bool pause = setting == Quick; // one of each
        host.record.pauseOnSave = pause;
        openAndPlay(host);
        const QPointer<MediaPlayerView> view = host.view();
        const auto generation = view->generation;
        hideAndPark(host);
        const qint64 hiddenAt = host.position();
        host.record.cropRight = 320;
        createAgain(host);
        QCOMPARE(host.view(), view);
        QCOMPARE(int(host.record.attached), 0);
        if (!pause)
            AWAIT(host.position() > hiddenAt + GST_SECOND / 4);
        for (const bool resume : {false, true}) {
            hideAndPark(host);
            host.record.resumeOnRestore = resume;
            host.control->SysNativeControlShow(1);
            AWAIT_EQUAL(int(host.record.attached), 1);
            AWAIT_EQUAL(host.picture(), "RRBB");
            const bool paused = pause && !resume;
            QCOMPARE(view->pausedBySave, paused);
            AWAIT_EQUAL(host.state(), int(paused ? GST_STATE_PAUSED : GST_STATE_PLAYING));
        }
        QCOMPARE(view->generation, generation); // neither stopped, sought nor loaded again
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        AWAIT_EQUAL(host.picture(), "YYYY");
        if (host.widget)
            AWAIT_EQUAL(host.widget->findChildren<QQuickWidget *>().size(), 1);
    }

    void movesToAnotherWindow()
    {
        Host host = hostIn(Quick);
        openAndPlay(host);
        const QPointer<MediaPlayerView> view = host.view();
        const auto generation = view->generation;
        host.control->saveObject();
        auto first = std::exchange(host.window, std::make_unique<QQuickWindow>());
        host.window->resize(first->size());
        host.window->show();
        host.item = nullptr; // stays in the first window
        createAgain(host);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
        QCOMPARE(view->generation, generation + 1); // prerolled anew, not played to its end
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        AWAIT_EQUAL(host.picture(), "YYYY");
        first.reset();
        QVERIFY(view);
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.position(), 0);
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > 0);
    }

    void returnsToAFileThatNeverPrerolled()
    {
        Host host(Host::Quick, {320, 240}, Host::Hidden);
        host.open(media("quadrants.webm"));
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        host.setShown(true);
        AWAIT_EQUAL(host.picture(), "YYYY");
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
    }

    void marksForRebinding_data() { addSettings(); }
    void marksForRebinding()
    {
        QFETCH(int, setting);
        Host host = hostIn(setting);
        openAndPlay(host);
        AWAIT_EQUAL(int(host.record.attached), 1);
        const QPointer<MediaPlayerView> view = host.view();
        QCOMPARE(host.run(MediaPlayerCommandRebind), unanswered);
        host.control->SysNativeControlShow(0);
        AWAIT(!loadRelaxed(view->saveRequested) && !loadAcquire(view->invokePending));
        QCOMPARE(bool(host.record.attached), !enableWorkaround);
        createAgain(host); // takes the old item away; a view that was not parked goes with it
        QCOMPARE(int(host.record.done), enableWorkaround ? 1 : 2);
        host.control->SysNativeControlShow(1);
        QCOMPARE(host.view() == view, bool(enableWorkaround));
        AWAIT(host.state() >= GST_STATE_PAUSED);
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT_EQUAL(host.state(), int(GST_STATE_PLAYING));
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT(bool(view) == bool(enableWorkaround));
        QVERIFY(host.view());
    }

    void everyEnding_data()
    {
        QTest::addColumn<int>("setting");
        QTest::addColumn<Step>("reach");
        QTest::addColumn<Step>("end");
        QTest::addColumn<int>("stays");
        for (const auto &[situation, reach] : situations) {
            for (const auto &[way, meetsAllIn, stays, end] : ways) {
                for (const int setting : {Widget, WidgetWorkaround, Quick}) {
                    if (reach == openAndPlay || setting == meetsAllIn)
                        QTest::addRow("%s: %s, %s", settingNames[setting], situation, way)
                            << setting << reach << end << int(stays);
                }
            }
        }
    }
    void everyEnding()
    {
        QFETCH(int, setting);
        QFETCH(Step, reach);
        QFETCH(Step, end);
        QFETCH(int, stays);
        Host host = hostIn(setting);
        reach(host);
        const QPointer<MediaPlayerView> view = host.view();
        const bool viewStays = stays == Yes || (stays == WithoutControl && setting != Widget)
            || (stays == IfParked && !view->videoObject->parentItem());
        end(host);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(bool(view), viewStays);
        QCOMPARE(host.view(), view.data());
        QVERIFY(viewStays || !host.control);
        AWAIT_EQUAL(playerThreads(), int(viewStays));
    }

    void loadsWhileParked()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        hideAndPark(host);
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "YYYY");
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT_EQUAL(host.state(), int(GST_STATE_PLAYING));
        hideAndPark(host);
        postEnd(host.view()->pipeline);
        AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
    }

    // The window still runs what the video item left with it when it came.
    void itemGoesBeforeItsFirstFrame()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        hideAndPark(host);
        mallopt(M_PERTURB, 0xa5); // what has been freed holds no sense any more
        host.view()->restore();
        delete host.view()->parentItem;
        bool synchronized = false;
        connect(host.window.get(), &QQuickWindow::afterSynchronizing, this,
                [&] { synchronized = true; });
        host.window->update();
        AWAIT(synchronized);
        mallopt(M_PERTURB, 0);
    }

    void fiftyCyclesLeakNothing_data() { addSettings(); }
    void fiftyCyclesLeakNothing()
    {
        QFETCH(int, setting);
        Host host = hostIn(setting);
        // Decoders and pools vary their threads by some, with a descriptor each; a leak of one a
        // cycle is forty, and the heap's would be 160 MiB with a GL context for each.
        const auto isLevel = [](bool atTen) {
            static qint64 allowed[3];
            malloc_trim(0);
            const auto entries = [](const char *folder) {
                return qint64(
                    QDir(QLatin1String(folder)).entryList(QDir::System | QDir::AllEntries).size());
            };
            const qint64 now[] = {entries("/proc/self/task"), entries("/proc/self/fd"),
                                  qint64(mallinfo2().uordblks)};
            constexpr qint64 tolerance[] = {10, 10, 8 << 20};
            if (atTen)
                std::transform(now, std::end(now), tolerance, allowed, std::plus<>());
            return std::equal(now, std::end(now), allowed, std::less<>());
        };
        openAndPlay(host);
        for (int cycle = 1; cycle <= 50; ++cycle) {
            hideAndPark(host);
            createAgain(host);
            host.control->SysNativeControlShow(1);
            AWAIT_EQUAL(int(host.record.attached), 1);
            if (cycle % 10 == 0) { // measured in the same situation: playing, not near the end
                AWAIT(host.state() >= GST_STATE_PAUSED);
                QCOMPARE(host.play(GST_STATE_PLAYING), complete);
                QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
                AWAIT_EQUAL(host.state(), int(GST_STATE_PLAYING));
            }
            if (cycle == 10)
                isLevel(true);
        }
        const qint64 before = host.position();
        AWAIT(host.position() > before);
        AWAIT(isLevel(false));
    }
};

PLAYER_TEST_MAIN(LifecycleTest)
#include "lifecycle_test.moc"
