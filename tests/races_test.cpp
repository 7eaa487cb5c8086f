#include "tests/interleaving.h"

#include "update/cThread.h"

#include <thread>

namespace
{

using Action = std::function<void(Host &)>;

GstState stateOf(GstElement *element)
{
    GstState state = GST_STATE_VOID_PENDING;
    gst_element_get_state(element, &state, nullptr, 5 * GST_SECOND);
    return state;
}

bool isOnBus(GstElement *pipeline)
{
    GstBus *bus = gst_element_get_bus(pipeline);
    const bool pending = gst_bus_have_pending(bus);
    gst_object_unref(bus);
    return pending;
}

void request(Host &host, int command)
{
    storeRelaxed(host.record.command, command);
    storeRelease(host.record.execute, 1);
    host.view()->updateValues();
}

void load(Host &host, const char *name)
{
    host.setFileName(media(name) + '\0');
    request(host, MediaPlayerCommandLoad);
}

void play(Host &host, int state)
{
    host.record.playState = state;
    request(host, MediaPlayerCommandPlayState);
}

void seek(Host &host, qint64 position)
{
    host.record.seekPosition = position;
    request(host, MediaPlayerCommandSeek);
}

} // namespace

/// The commands run on the GUI thread as the update thread has them run; the update thread, or a
/// thread that stands for it, is held at the point where the two can meet.
class RacesTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Host> m_host;

    MediaPlayerView *view() { return m_host->view(); }
    GstElement *pipeline() { return view()->pipeline; }

    /// From here on the test calls what the update thread would call.
    void takeOverUpdateThread() { view()->thread->destroyThread(); }

private Q_SLOTS:
    void init()
    {
        m_host = std::make_unique<Host>(Host::Quick);
        m_host->open(media("yellow.mp4"));
        AWAIT_EQUAL(m_host->picture(), "YYYY");
        QCOMPARE(m_host->load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(m_host->picture(), "RGBW");
        QCOMPARE(m_host->play(GST_STATE_PLAYING), complete);
        AWAIT(m_host->position() > 0);
    }
    void cleanup()
    {
        if (view()) {
            const QList<int> states = m_host->pipelineStates();
            for (int i = 1; i < states.size(); ++i)
                QVERIFY2(states[i] <= GST_STATE_READY, "a pipeline that is not current runs");
        }
        m_host.reset();
    }

    void endMeetsCommand_data();
    void endMeetsCommand();

    // What the listener does when a command has passed it between its look at the bus and the lock.
    void commandOvertakesEnd_data();
    void commandOvertakesEnd();

    void endOfAnOldRunIsForgotten()
    {
        GstElement *const old = pipeline();
        takeOverUpdateThread();
        postEnd(old);
        postError(old);
        load(*m_host, "yellow.mp4");
        QVERIFY(!isOnBus(old));
        load(*m_host, "quadrants.webm");
        QCOMPARE(pipeline(), old);
        const auto generation = view()->generation;
        view()->busListenerFunction();
        QCOMPARE(view()->generation, generation);
        QCOMPARE(int(m_host->record.error), 0);
    }

    void seekOvertakesEnd()
    {
        takeOverUpdateThread();
        postEnd(pipeline());
        postError(pipeline());
        seek(*m_host, 3 * GST_SECOND);
        const auto generation = view()->generation;
        view()->busListenerFunction();
        QCOMPARE(view()->generation, generation); // not rewound
        QCOMPARE(int(m_host->record.error), 1); // the rest of the bus is still heard
    }

    void errorWaitsForTheReport()
    {
        takeOverUpdateThread();
        for (auto *byte : {&m_host->record.done, &m_host->record.error, &m_host->record.busy})
            *byte = 2;
        std::unique_lock guard(view()->lock);
        std::atomic<bool> finished = false;
        std::thread reporter([&] {
            view()->report(true);
            finished = true;
        });
        QVERIFY(blockUntil([&] { return finished || isContended(view()->lock); }));
        QCOMPARE(int(m_host->record.done), 2);
        view()->handleError();
        guard.unlock();
        reporter.join();
        QCOMPARE(int(m_host->record.done), 1);
        QCOMPARE(int(m_host->record.error), 0);
    }

    // A query is under way when the command moves the media; its answer comes afterwards.
    void staleAnswerIsNotPublished()
    {
        takeOverUpdateThread();
        std::atomic<bool> asked = false;
        std::atomic<bool> mayAnswer = false;
        auto hold = [&] {
            asked = true;
            blockUntil([&] { return mayAnswer.load(); });
        };
        using Hold = decltype(hold);
        GstPad *const pad = gst_element_get_static_pad(view()->glUpload, "sink");
        const gulong probe = gst_pad_add_probe(
            pad, GST_PAD_PROBE_TYPE_QUERY_UPSTREAM,
            [](GstPad *, GstPadProbeInfo *info, gpointer data) {
                if (GST_QUERY_TYPE(GST_PAD_PROBE_INFO_QUERY(info)) == GST_QUERY_DURATION)
                    (*static_cast<Hold *>(data))();
                return GST_PAD_PROBE_OK;
            },
            &hold, nullptr);
        constexpr qint64 untouched = -1;
        m_host->record.position = untouched;
        std::thread listener([this] { view()->publish(pipeline()); });
        const bool held = blockUntil([&] { return asked.load(); });
        seek(*m_host, 3 * GST_SECOND);
        mayAnswer = true;
        listener.join();
        gst_pad_remove_probe(pad, probe);
        gst_object_unref(pad);
        QVERIFY(held);
        QCOMPARE(m_host->position(), untouched);
        stateOf(pipeline());
        view()->publish(pipeline());
        QVERIFY(m_host->position() >= 3 * GST_SECOND);
    }

    void itemGoesWhileTheOverlayIsOnItsWay()
    {
        takeOverUpdateThread();
        postError(pipeline());
        std::thread([this] { view()->busListenerFunction(); }).join();
        QCOMPARE(int(m_host->record.error), 1);
        delete m_host->item;
        QVERIFY(!view() || view()->ending);
        AWAIT(!view());
    }

    void errorOfThePrerollStays()
    {
        QTemporaryFile broken(QDir::tempPath() + QStringLiteral("/XXXXXX.webm"));
        QVERIFY(broken.open() && broken.write(QByteArray(20'000, 'x')) && broken.flush());
        takeOverUpdateThread();
        m_host->setFileName("file://" + broken.fileName().toUtf8() + '\0');
        request(*m_host, MediaPlayerCommandLoad);
        QCoreApplication::sendPostedEvents(view(), QEvent::MetaCall); // videoItemReady
        QVERIFY(blockUntil([this] {
            view()->busListenerFunction();
            return m_host->record.error == 1;
        }));
        QCoreApplication::processEvents();
        QCOMPARE(m_host->overlay(), QStringLiteral("Error loading media"));
    }

    void lastOfShowAndHideWins()
    {
        takeOverUpdateThread();
        for (const int show : {0, 1, 0}) {
            m_host->control->SysNativeControlShow(1 - show);
            m_host->control->SysNativeControlShow(show);
            view()->updatePass();
            AWAIT_EQUAL(int(m_host->record.attached), show);
            view()->updatePass();
            QVERIFY(!view()->invokePending);
        }
    }

    void directSaveMeetsQueuedSlot()
    {
        takeOverUpdateThread();
        // A command is queued once, however often a direct call lowers invokePending.
        m_host->record.command = MediaPlayerCommandSeek;
        m_host->record.execute = 1;
        const auto generation = view()->generation;
        view()->updatePass();
        view()->saveObject();
        QCOMPARE(int(m_host->record.attached), 0);
        view()->updatePass();
        view()->updatePass();
        QCoreApplication::processEvents();
        QCOMPARE(int(m_host->record.execute), 0);
        QCOMPARE(view()->generation, generation + 1);

        m_host->control->SysNativeControlShow(1);
        view()->updatePass();
        view()->saveObject();
        QCOMPARE(int(m_host->record.attached), 0);
        QCoreApplication::processEvents();
        QCOMPARE(int(m_host->record.attached), 1);
        QCOMPARE(view()->videoObject->parentItem(), m_host->item.data());
    }

    void loadMeetsARunningPreroll()
    {
        SilentServer server;
        m_host->setFileName(server.uri + '\0');
        request(*m_host, MediaPlayerCommandLoad);
        GstElement *const outgoing = pipeline();
        view()->videoItemReady(); // gives up waiting
        QVERIFY(MediaPlayerView::isAboveReady(outgoing));
        load(*m_host, "yellow.mp4");
        QVERIFY(pipeline() != outgoing);
        QVERIFY(stateOf(outgoing) <= GST_STATE_READY);
        AWAIT_EQUAL(m_host->picture(), "YYYY");
    }
};

void RacesTest::endMeetsCommand_data()
{
    QTest::addColumn<Action>("command");
    QTest::addColumn<int>("state"); // of the pipeline that is current afterwards; 0 for none
    QTest::newRow("load") << Action([](Host &host) { load(host, "tone.flac"); }) << 3;
    QTest::newRow("load, cached") << Action([](Host &host) { load(host, "yellow.mp4"); }) << 3;
    QTest::newRow("play") << Action([](Host &host) { play(host, 4); }) << 4;
    QTest::newRow("stop") << Action([](Host &host) { play(host, 1); }) << 3;
    QTest::newRow("seek") << Action([](Host &host) { seek(host, 3 * GST_SECOND); }) << 3;
    QTest::newRow("unrefPipe") << Action([](Host &host) { host.view()->unrefPipe(); }) << 0;
    QTest::newRow("destructor") << Action([](Host &host) { delete host.view(); }) << 0;
}

// The update thread is in the middle of the sequence that the end of stream began.
void RacesTest::endMeetsCommand()
{
    QFETCH(Action, command);
    QFETCH(int, state);
    GstElement *const ended = pipeline();
    MediaPlayerView *const meeting = view();
    Gate gate(ended, GST_STATE_PLAYING, [meeting] {
        return isContended(meeting->lock) || !loadAcquire(meeting->pipelineActive);
    });
    postEnd(ended);
    QVERIFY(blockUntil([&] { return gate.reached.load(); }));
    const auto generation = loadRelaxed(meeting->generation);
    command(*m_host);
    QVERIFY(gate.passed);
    if (!state && view()) // READY for the end; NULL and no pipeline for unrefPipe; nothing between
        QCOMPARE(meeting->generation, generation + 3);
    if (!state)
        QVERIFY(!view() || !pipeline());
    else
        QCOMPARE(int(stateOf(pipeline())), state);
}

void RacesTest::commandOvertakesEnd_data()
{
    QTest::addColumn<Action>("command");
    QTest::newRow("load") << Action([](Host &host) { load(host, "tone.flac"); });
    QTest::newRow("load, cached") << Action([](Host &host) { load(host, "yellow.mp4"); });
    QTest::newRow("stop") << Action([](Host &host) { play(host, 1); });
    QTest::newRow("rebind") << Action([](Host &host) { request(host, MediaPlayerCommandRebind); });
    QTest::newRow("unrefPipe") << Action([](Host &host) { host.view()->unrefPipe(); });
}

void RacesTest::commandOvertakesEnd()
{
    QFETCH(Action, command);
    takeOverUpdateThread();
    GstElement *const ended = GST_ELEMENT(gst_object_ref(pipeline()));
    postEnd(ended);
    // The command holds the lock when the listener, which has seen the end, comes to it.
    MediaPlayerView *const meeting = view();
    std::atomic<bool> goes = false;
    std::thread listener([&] {
        blockUntil([&] { return goes.load(); });
        meeting->drainBus(ended);
    });
    {
        Gate gate(ended, GST_STATE_PLAYING, [&] {
            goes = true;
            return isContended(meeting->lock);
        });
        command(*m_host);
        goes = true;
    }
    const auto generation = meeting->generation;
    listener.join();
    QCOMPARE(meeting->generation, generation);
    gst_object_unref(ended);
}

PLAYER_TEST_MAIN(RacesTest)
#include "races_test.moc"
