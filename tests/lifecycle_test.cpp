#include "tests/interleaving.h"

#include <QtCore/QScopeGuard>
#include <QtQuickWidgets/QQuickWidget>

#include <malloc.h>

namespace
{

using Kind = Host::Kind;

/// One kind of host with enableWorkaround off or on, as most cases run in each.
struct Setting {
    const char *name;
    Kind kind;
    unsigned char workaround;
    bool viewOutlivesControl;
};

constexpr Setting settings[] = {{"widget", Kind::Widget, 0, false},
                                {"widget, workaround", Kind::Widget, 1, true},
                                {"quick", Kind::Quick, 0, true},
                                {"quick, workaround", Kind::Quick, 1, true}};

/// A way to end a player, and a situation to end it in.
using Step = std::function<void(Host &)>;
struct Named {
    const char *name;
    Step step;
};

void sendDeferredDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void hideAndPark(Host &host)
{
    host.control->SysNativeControlShow(0);
    QTRY_COMPARE_WITH_TIMEOUT(int(host.record.attached), 0, patience);
}

void waitFor(const char *what, const std::function<bool()> &condition)
{
    if (!QTest::qWaitFor(condition, patience))
        QFAIL(qPrintable(QStringLiteral("%1 did not come").arg(QLatin1String(what))));
}

void openAndPreroll(Host &host)
{
    host.open(media("quadrants.webm"));
    waitFor("the first frame", [&host] { return host.state() == GST_STATE_PAUSED; });
}

void openAndPlay(Host &host)
{
    openAndPreroll(host);
    host.play(GST_STATE_PLAYING);
    waitFor("a position", [&host] { return host.position() > 0; });
}

QQuickItem *hostItem(Host &host)
{
    return host.view()->parentItem;
}

/// The control stays from the first registration on, so that the view can be ended by it.
const Named ways[] = {
    {"destroyed", [](Host &host) { host.destroyControl(); }},
    {"saved and destroyed",
     [](Host &host) {
         host.control->saveObject();
         host.destroyControl();
     }},
    {"saved, destroyed later",
     [](Host &host) {
         host.control->saveObject();
         QCoreApplication::processEvents();
         if (host.control)
             host.destroyControl();
     }},
    {"saved, never destroyed", [](Host &host) { host.control->saveObject(); }},
    {"window goes",
     [](Host &host) {
         host.widget.reset();
         host.window.reset();
     }},
    {"item goes", [](Host &host) { delete hostItem(host); }},
    {"item goes, parked",
     [](Host &host) {
         host.control->saveObject();
         delete hostItem(host);
     }},
    {"scene ends",
     [](Host &host) { QMetaObject::invokeMethod(host.view()->videoObject, "destruct"); }},
    {"registered twice, scene ends",
     [](Host &host) {
         host.registerRecord();
         QMetaObject::invokeMethod(host.view()->videoObject, "destruct");
     }},
    {"two controls, scene ends",
     [](Host &host) {
         const QPointer<BasicWidget> first = host.control;
         host.control = host.kind == Kind::Widget
             ? static_cast<BasicWidget *>(Create(host.widget.get(), 0, 0, 9, 9))
             : CreateQML(host.window.get(), host.item, nullptr, 0, 0, 0, 0);
         host.registerRecord();
         QMetaObject::invokeMethod(host.view()->videoObject, "destruct");
         sendDeferredDeletes();
         QVERIFY(!first);
     }},
    {"view deleted", [](Host &host) { delete host.view(); }},
    {"control gone, item goes",
     [](Host &host) {
         const QPointer<QQuickItem> item = hostItem(host);
         host.destroyControl();
         sendDeferredDeletes();
         delete item;
     }},
};

} // namespace

class LifecycleTest : public QObject
{
    Q_OBJECT

private:
    SilentServer m_server;
    int m_othersThreads = 0;

    int playerThreads() const { return threadsOfOwnName() - m_othersThreads; }

    void addSettings()
    {
        QTest::addColumn<int>("setting");
        for (int i = 0; i < int(std::size(settings)); ++i)
            QTest::newRow(settings[i].name) << i;
    }

private Q_SLOTS:
    void initTestCase()
    {
        for (const Kind kind : {Kind::Widget, Kind::Quick}) {
            Host host(kind);
            openAndPlay(host);
        }
        m_othersThreads = threadsOfOwnName();
    }
    void cleanup()
    {
        enableWorkaround = 0;
        AWAIT_EQUAL(playerThreads(), 0);
    }

    void survivesItsControl_data()
    {
        QTest::addColumn<int>("setting");
        QTest::addColumn<bool>("pause");
        for (int i = 1; i < 3; ++i) {
            QTest::addRow("%s", settings[i].name) << i << false;
            QTest::addRow("%s, pausing", settings[i].name) << i << true;
        }
    }
    void survivesItsControl()
    {
        QFETCH(int, setting);
        QFETCH(bool, pause);
        enableWorkaround = settings[setting].workaround;
        Host host(settings[setting].kind);
        host.record.pauseOnSave = pause;
        openAndPlay(host);
        AWAIT_EQUAL(int(host.record.attached), 1);
        AWAIT_EQUAL(host.picture(), "RGBW");
        const QPointer<MediaPlayerView> view = host.view();
        GstElement *const pipeline = view->pipeline;
        const auto generation = view->generation;

        hideAndPark(host);
        QCOMPARE(view->pausedBySave, pause);
        const qint64 hiddenAt = host.position();
        host.destroyControl();
        if (!pause)
            AWAIT(host.position() > hiddenAt + GST_SECOND / 4);
        host.record.cropRight = 320;
        host.create();
        host.registerRecord();
        QCOMPARE(host.view(), view);
        QCOMPARE(int(host.record.attached), 0);
        for (const bool resume : {false, true}) {
            host.record.resumeOnRestore = resume;
            host.control->SysNativeControlShow(1);
            AWAIT_EQUAL(int(host.record.attached), 1);
            AWAIT_EQUAL(host.picture(), "RRBB");
            QCOMPARE(view->pausedBySave, pause && !resume);
            AWAIT_EQUAL(host.state(), int(pause && !resume ? GST_STATE_PAUSED : GST_STATE_PLAYING));
            if (!resume)
                hideAndPark(host);
        }
        QCOMPARE(view->pipeline, pipeline);
        QCOMPARE(view->pipelineCache.size(), 1);
        QCOMPARE(view->generation, generation); // neither stopped nor sought
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        AWAIT_EQUAL(host.picture(), "YYYY");
        if (host.widget)
            AWAIT_EQUAL(host.widget->findChildren<QQuickWidget *>().size(), 1);
    }

    void movesToAnotherWindow()
    {
        Host host(Kind::Quick);
        openAndPlay(host);
        const QPointer<MediaPlayerView> view = host.view();
        hideAndPark(host);
        host.destroyControl();

        std::unique_ptr<QQuickWindow> first = std::move(host.window);
        host.window = std::make_unique<QQuickWindow>();
        host.window->setColor(Qt::magenta);
        host.window->resize(first->size());
        host.window->show();
        host.item = nullptr;
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(int(host.record.attached), 1);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        AWAIT_EQUAL(host.picture(), "YYYY");
        first.reset();
        QVERIFY(view);
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > 0);
    }

    void returnsToAFileThatNeverPrerolled_data()
    {
        QTest::addColumn<bool>("shownBefore");
        QTest::newRow("shown before the return") << true;
        QTest::newRow("shown after the return") << false;
    }
    void returnsToAFileThatNeverPrerolled()
    {
        QFETCH(bool, shownBefore);
        Host host(Kind::Quick);
        host.window->hide();
        host.open(media("quadrants.webm"));
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        if (shownBefore) {
            host.window->show();
            AWAIT_EQUAL(host.picture(), "YYYY");
        }
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        host.window->show();
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        QCOMPARE(int(host.record.error), 0);
    }

    void marksForRebinding_data() { addSettings(); }
    void marksForRebinding()
    {
        QFETCH(int, setting);
        const auto &[name, kind, workaround, outlives] = settings[setting];
        enableWorkaround = workaround;
        Host host(kind);
        openAndPlay(host);
        AWAIT_EQUAL(int(host.record.attached), 1);
        QCOMPARE(host.run(MediaPlayerCommandRebind), unanswered);
        host.control->SysNativeControlShow(0);
        AWAIT(!loadRelaxed(host.view()->saveRequested) && !loadAcquire(host.view()->invokePending));
        QCOMPARE(int(host.record.attached), workaround ? 0 : 1);
        if (!outlives)
            return;
        const QPointer<MediaPlayerView> view = host.view();
        host.destroyControl();
        host.create(); // takes the old item away; one that was not parked goes with it
        host.registerRecord();
        QCOMPARE(QByteArray::number(host.record.done) + QByteArray::number(host.record.error)
                     + QByteArray::number(host.record.busy),
                 workaround ? complete : unanswered);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.view() == view, bool(workaround));
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT_EQUAL(host.state(), int(GST_STATE_PLAYING));
    }

    void isReplacedInTheSameTurn()
    {
        Host host(Kind::Widget);
        openAndPlay(host);
        const QPointer<MediaPlayerView> old = host.view();
        host.destroyControl();
        host.open(media("quadrants.webm"));
        QVERIFY(old);
        const QPointer<MediaPlayerView> made = host.view();
        QVERIFY(made != old);
        AWAIT(!old);
        QCOMPARE(host.view(), made);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > 0);
    }

    void everyEnding_data();
    void everyEnding()
    {
        QFETCH(int, setting);
        QFETCH(Step, situation);
        QFETCH(Step, way);
        QFETCH(bool, viewGoes);
        enableWorkaround = settings[setting].workaround;
        Host host(settings[setting].kind);
        situation(host);
        const QPointer<MediaPlayerView> view = host.view();
        QVERIFY(view);
        way(host);
        QCoreApplication::processEvents();
        sendDeferredDeletes();
        QCOMPARE(!view, viewGoes);
        QCOMPARE(host.view(), view.data());
        if (viewGoes)
            AWAIT_EQUAL(playerThreads(), 0);
        else
            AWAIT_EQUAL(playerThreads(), 1);
    }

    void fiftyCycles_data() { addSettings(); }
    void fiftyCycles();
};

void LifecycleTest::everyEnding_data()
{
    const Named situations[] = {
        {"nothing loaded", [](Host &host) { host.open("no URI"); }},
        {"loading", [](Host &host) { host.open(media("quadrants.webm")); }},
        {"item without a window",
         [](Host &host) {
             (host.widget ? host.widget->windowHandle() : host.window.get())->hide();
             host.open(media("quadrants.webm"));
             QCoreApplication::processEvents();
         }},
        {"preroll without an end",
         [this](Host &host) {
             host.open(m_server.uri);
             waitFor("the preroll", [&host] { return host.view()->generation > 1; });
         }},
        {"paused", openAndPreroll},
        {"playing", openAndPlay},
        {"end of stream",
         [](Host &host) {
             openAndPlay(host);
             MediaPlayerView *view = host.view();
             // Goes with the pipeline's bus, so that it may outlast this function.
             auto *gate = new Gate(view->pipeline, GST_STATE_PLAYING, [view] {
                 return isContended(view->lock) || !loadAcquire(view->pipelineActive);
             });
             QObject::connect(view, &QObject::destroyed, [gate] { delete gate; });
             postEnd(view->pipeline);
             QVERIFY(blockUntil([gate] { return gate->reached.load(); }));
         }},
        {"error",
         [](Host &host) {
             openAndPlay(host);
             postError(host.view()->pipeline);
             waitFor("the error", [&host] { return loadRelaxed(host.record.error) == 1; });
         }},
        {"command queued",
         [](Host &host) {
             openAndPreroll(host);
             host.record.playState = GST_STATE_PLAYING;
             storeRelaxed(host.record.command, MediaPlayerCommandPlayState);
             storeRelease(host.record.execute, 1);
             QVERIFY(blockUntil([&host] { return loadAcquire(host.view()->invokePending); }));
         }},
        {"hidden a moment ago",
         [](Host &host) {
             openAndPlay(host);
             host.control->SysNativeControlShow(0);
         }},
        {"restore queued",
         [](Host &host) {
             openAndPlay(host);
             hideAndPark(host);
             host.control->SysNativeControlShow(1);
             QVERIFY(blockUntil([&host] { return loadAcquire(host.view()->invokePending); }));
         }},
        {"GUI thread busy",
         [](Host &host) {
             openAndPlay(host);
             QVERIFY(blockForOnePass(host));
         }},
    };
    QTest::addColumn<int>("setting");
    QTest::addColumn<Step>("situation");
    QTest::addColumn<Step>("way");
    QTest::addColumn<bool>("viewGoes");

    const auto add = [](int setting, const Named &situation, const Named &way) {
        const QByteArray name(way.name);
        const bool lives = settings[setting].viewOutlivesControl;
        const bool onlyControlGoes = name.contains("destroyed") && !name.contains("never");
        const bool parked = name == "item goes, parked"
            || (name == "item goes" && QByteArray(situation.name) == "restore queued");
        const bool kept = (onlyControlGoes && lives) || name.contains("never") || parked;
        QTest::addRow("%s: %s, %s", settings[setting].name, situation.name, way.name)
            << setting << situation.step << way.step << !kept;
    };
    // Each way while the media plays, in each setting; each situation with the ways that differ in
    // who ends the view.
    for (int setting = 0; setting < int(std::size(settings)); ++setting) {
        for (const Named &way : ways)
            add(setting, situations[5], way);
    }
    for (const Named &situation : situations) {
        add(0, situation, ways[0]);
        add(2, situation, ways[5]);
        add(2, situation, ways[4]);
        add(1, situation, ways[10]);
    }
}

void LifecycleTest::fiftyCycles()
{
    QFETCH(int, setting);
    enableWorkaround = settings[setting].workaround;
    Host host(settings[setting].kind);
    const auto files = [] {
        return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size();
    };
    const auto heap = [] {
        malloc_trim(0);
        return mallinfo2().uordblks;
    };
    openAndPlay(host);
    qsizetype threadsAtTen = 0;
    qsizetype filesAtTen = 0;
    size_t heapAtTen = 0;
    for (int cycle = 1; cycle <= 50; ++cycle) {
        hideAndPark(host);
        host.destroyControl();
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(int(host.record.attached), 1);
        // Each is measured in the same situation: playing, not near the end.
        if (cycle % 10 == 0) {
            AWAIT_EQUAL(host.view()->pipelineCache.size(), 1);
            host.record.seekPosition = 0;
            QCOMPARE(host.play(GST_STATE_PLAYING), complete);
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
            AWAIT(host.position() > 0);
            AWAIT_EQUAL(host.state(), int(GST_STATE_PLAYING));
        }
        if (cycle == 10) {
            threadsAtTen = threads();
            filesAtTen = files();
            heapAtTen = heap();
        }
    }
    const qint64 before = host.position();
    AWAIT(host.position() > before);
    // Decoders vary their threads, and pipelines their sockets; a leak shows forty times over.
    QVERIFY2(threads() < threadsAtTen + 10, qPrintable(QString::number(threads() - threadsAtTen)));
    QVERIFY2(files() < filesAtTen + 10, qPrintable(QString::number(files() - filesAtTen)));
    constexpr size_t jitter = 8 << 20; // a GL context for each player would be 160 MiB
    QVERIFY2(heap() < heapAtTen + jitter, qPrintable(QString::number(heap() - heapAtTen)));
}

PLAYER_TEST_MAIN(LifecycleTest)
#include "lifecycle_test.moc"
