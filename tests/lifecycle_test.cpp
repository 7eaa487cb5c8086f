#include "tests/interleaving.h"

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

using Levels = std::array<qint64, 3>; // threads, descriptors, bytes of heap

Levels levels()
{
    return {entriesOf("/proc/self/task"), entriesOf("/proc/self/fd"), qint64(mallinfo2().uordblks)};
}

using Step = void (*)(Host &);

/// What a player may be at when it ends.
const struct {
    const char *name;
    Step reach;
} situations[] = {
    {"nothing loaded", [](Host &host) { host.open("no URI"); }},
    {"loading", [](Host &host) { host.open(media("quadrants.webm")); }},
    {"preroll without an end", [](Host &host) { host.open("appsrc://never.wav"); }},
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
const struct Way {
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
         host.destroyControl();
         delete host.view()->parentItem;
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

/// Parks the picture when its item has reported itself, from the render thread, and before anybody
/// has heard of it.
class ParkedInBetween : public QObject
{
    Q_OBJECT

public:
    explicit ParkedInBetween(Host &host) : m_host(host)
    {
        connect(host.videoItem(), SIGNAL(itemInitializedChanged()), this, SLOT(note()),
                Qt::DirectConnection);
        host.view()->installEventFilter(this);
    }

    bool done = false;

public Q_SLOTS:
    void note() { m_reported = true; }

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MetaCall && m_reported && !std::exchange(done, true))
            m_host.control->saveObject();
        return false;
    }

    Host &m_host;
    std::atomic<bool> m_reported = false;
};

} // namespace

class LifecycleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        for (const QWindow *window : QGuiApplication::allWindows())
            QVERIFY(!qobject_cast<const MediaPlayerView *>(window));
    }

    void survivesItsControl_data() { addSettings(WidgetWorkaround); }
    void survivesItsControl()
    {
        QFETCH(int, setting);
        Host host = hostIn(setting);
        const bool pause = setting == Quick; // one of each
        host.record.pauseOnSave = pause;
        openAndPlay(host);
        const QPointer<MediaPlayerView> view = host.view();
        const auto generation = generationOf(view);
        hideAndPark(host);
        const qint64 hiddenAt = host.position();
        host.record.cropRight = 320;
        createAgain(host);
        QCOMPARE(host.view(), view);
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
        QCOMPARE(generationOf(view), generation); // neither stopped, sought nor loaded again
        if (host.widget)
            AWAIT_EQUAL(host.widget->findChildren<QQuickWidget *>().size(), 1);
    }

    void movesToAnotherWindowAndLoadsWhileParked()
    {
        Host host = hostIn(Quick);
        openAndPlay(host);
        const QPointer<MediaPlayerView> view = host.view();
        const auto generation = generationOf(view);
        host.control->saveObject();
        auto first = std::exchange(host.window, std::make_unique<QQuickWindow>());
        host.window->resize(first->size());
        host.window->show();
        host.item = nullptr; // stays in the first window
        createAgain(host);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
        QCOMPARE(generationOf(view), generation + 1); // prerolled anew, not played to its end
        first.reset();
        QVERIFY(view);

        hideAndPark(host);
        QCOMPARE(host.load(media("./quadrants.webm")), complete);
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "YYYY");
        const auto shown = generationOf(view);
        QCOMPARE(host.load(media("./quadrants.webm")), complete); // has never prerolled
        AWAIT_EQUAL(generationOf(view), shown + 3); // the switch, and the preroll of a new film
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        QCOMPARE(host.load(media("quadrants.webm")), complete); // has, in the window that is gone
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);
        hideAndPark(host);
        postEnd(host.view()->pipeline);
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
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
        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QVERIFY(host.view());
    }

    void everyEnding_data()
    {
        QTest::addColumn<int>("setting");
        QTest::addColumn<Step>("reach");
        QTest::addColumn<Way>("way");
        for (const auto &[situation, reach] : situations) {
            for (const Way &way : ways) {
                for (const int setting : {Widget, WidgetWorkaround, Quick}) {
                    if (reach == openAndPlay || setting == way.meetsAllIn)
                        QTest::addRow("%s: %s, %s", settingNames[setting], situation, way.name)
                            << setting << reach << way;
                }
            }
        }
    }
    void everyEnding()
    {
        QFETCH(int, setting);
        QFETCH(Step, reach);
        QFETCH(Way, way);
        Host host = hostIn(setting);
        reach(host);
        const QPointer<MediaPlayerView> view = host.view();
        const bool viewStays = way.stays == Yes
            || (way.stays == WithoutControl && setting != Widget)
            || (way.stays == IfParked && !view->videoObject->parentItem());
        way.end(host);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(bool(view), viewStays);
        QCOMPARE(host.view(), view.data());
        QVERIFY(viewStays || !host.control);
    }

    // The window still runs what the video item left with it when it came.
    void itemGoesBeforeItsFirstFrame()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        hideAndPark(host);
        host.view()->restore();
        delete host.view()->parentItem;
        bool synchronized = false; // no QSignalSpy: this comes from the render thread
        QQuickWindow *const window = host.window.get();
        connect(window, &QQuickWindow::afterSynchronizing, window, [&] { synchronized = true; });
        host.window->update();
        AWAIT(synchronized);
    }

    // A film that plays on behind a page of its host that comes and goes.
    void playsOnWhenItIsParkedAtOnce()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        hideAndPark(host);
        const std::uint32_t before = generationOf(host.view());
        {
            const ParkedInBetween parked(host);
            host.control->SysNativeControlShow(1);
            AWAIT(parked.done);
            AWAIT(!host.control);
        }
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(generationOf(host.view()), before);
    }

    void fiftyCyclesLeakNothing_data() { addSettings(); }
    void fiftyCyclesLeakNothing()
    {
        QFETCH(int, setting);
        Host host = hostIn(setting);
        // Decoders and pools vary their threads by some, with a descriptor each; a leak of one a
        // cycle is forty, and the heap's would be 160 MiB with a GL context for each.
        constexpr Levels tolerance {10, 10, 8 << 20};
        Levels allowed {};
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
                AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);
            }
            if (cycle == 10)
                std::ranges::transform(levels(), tolerance, allowed.begin(), std::plus<>());
        }
        AWAIT(std::ranges::equal(levels(), allowed, std::less<>()));
    }
};

PLAYER_TEST_MAIN(LifecycleTest)
#include "lifecycle_test.moc"
