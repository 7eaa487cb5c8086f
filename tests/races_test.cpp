#include "tests/interleaving.h"

#include "pipeline/stateChange.h"
#include "update/cThread.h"
#include "update/updateThread.h"

#include <thread>

namespace
{

/// What is forgotten of the messages that a command finds on the bus.
enum Forgets { Nothing, End, All };

struct Command {
    const char *name;
    Forgets forgets;
    bool takesATurn; ///< and so waits for a rewind to give up
    int state; ///< of the pipeline that is current afterwards; 0 for none
    void (*run)(Host &);
};

const Command commands[] = {
    {"load", All, true, GST_STATE_PAUSED, [](Host &host) { loadAtOnce(host, "tone.flac"); }},
    {"load, cached", All, true, GST_STATE_PAUSED,
     [](Host &host) { loadAtOnce(host, "yellow.mp4"); }},
    {"load and return", All, true, GST_STATE_PAUSED,
     [](Host &host) {
         loadAtOnce(host, "yellow.mp4");
         loadAtOnce(host, "quadrants.webm");
     }},
    {"play", Nothing, true, GST_STATE_PLAYING,
     [](Host &host) { playAtOnce(host, GST_STATE_PLAYING); }},
    {"stop", End, true, GST_STATE_PAUSED, [](Host &host) { playAtOnce(host, GST_STATE_NULL); }},
    {"seek", End, true, GST_STATE_PAUSED,
     [](Host &host) { runAtOnce(host, MediaPlayerCommandSeek); }},
    {"rebind", All, false, GST_STATE_PAUSED,
     [](Host &host) { runAtOnce(host, MediaPlayerCommandRebind); }},
    {"no state to go to", Nothing, false, GST_STATE_PAUSED,
     [](Host &host) { playAtOnce(host, GST_STATE_VOID_PENDING); }},
    {"parking without a pause", Nothing, false, GST_STATE_PAUSED,
     [](Host &host) { host.view()->saveObject(); }},
    {"unrefPipe", All, true, 0, [](Host &host) { host.view()->unrefPipe(); }},
    {"destructor", Nothing, true, 0, [](Host &host) { delete host.view(); }},
};

void addCommands(Forgets least)
{
    QTest::addColumn<Command>("command");
    for (const Command &command : commands) {
        if (command.forgets >= least)
            QTest::newRow(command.name) << command;
    }
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

    /// What the update thread does in one pass.
    void pass() { updatePass(*view()); }

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
            for (const auto &built : std::as_const(view()->pipelineCache))
                QVERIFY(built->pipeline == pipeline() || !isAboveReady(built->pipeline));
        }
        m_host.reset();
    }

    // The update thread is in the middle of the sequence that the end of stream began.
    void endMeetsCommand_data() { addCommands(Nothing); }
    void endMeetsCommand()
    {
        QFETCH(Command, command);
        MediaPlayerView *const meeting = view();
        Gate gate(meeting);
        postEnd(pipeline());
        QVERIFY(blockUntil([&] { return gate.reached.load(); }));
        const auto generation = generationOf(meeting);
        command.run(*m_host);
        if (!command.takesATurn) {
            QVERIFY(!gate.passed); // the rewind is where it was, and the command has not waited
            gate.open();
        }
        QVERIFY(blockUntil([&] { return gate.passed.load(); }));
        if (view() && !pipeline()) // READY for the end; NULL and no pipeline for unrefPipe
            QCOMPARE(generationOf(meeting), generation + 3);
        AWAIT_EQUAL(view() && pipeline() ? m_host->pipelineStates().first() : 0, command.state);
    }

    // A seek counts from a paused start, and parking leaves nothing to resume, though the rewind
    // has not come to its end.
    void cutRewindIsMadeGood_data()
    {
        QTest::addColumn<bool>("parks");
        QTest::newRow("seek") << false;
        QTest::newRow("parking with a pause") << true;
    }
    void cutRewindIsMadeGood()
    {
        QFETCH(bool, parks);
        m_host->record.pauseOnSave = 1;
        Gate gate(view());
        postEnd(pipeline());
        QVERIFY(blockUntil([&] { return gate.reached.load(); }));
        if (parks)
            view()->saveObject();
        else
            runAtOnce(*m_host, MediaPlayerCommandSeek);
        QVERIFY(gate.passed);
        AWAIT_EQUAL(m_host->pipelineStates().first(), int(GST_STATE_PAUSED));
        QVERIFY(!view()->pausedBySave);
    }

    // What waits on the bus while a command is carried out is news of the run before it.
    void commandOvertakesEnd_data() { addCommands(End); }
    void commandOvertakesEnd()
    {
        QFETCH(Command, command);
        takeOverUpdateThread();
        postEnd(pipeline());
        postError(pipeline());
        command.run(*m_host);
        if (!view() || !pipeline())
            return;
        const auto generation = generationOf(view());
        view()->busListenerFunction();
        QCOMPARE(generationOf(view()), generation); // not rewound
        QCOMPARE(m_host->record.error == 1, command.forgets == End);
        if (loadRelaxed(view()->rebindPending))
            return;
        postEnd(pipeline()); // the end of the run that the command began
        view()->busListenerFunction();
        QVERIFY(generationOf(view()) != generation);
    }

    // The error comes up while the command changes an item, and is heard before the report.
    void errorWaitsForTheReport()
    {
        takeOverUpdateThread();
        m_host->record.opacity = 0.5;
        connect(view()->videoItem, &QQuickItem::opacityChanged, this, [this] {
            postError(pipeline());
            std::thread([this] { view()->busListenerFunction(); }).join();
        });
        runAtOnce(*m_host, MediaPlayerCommandOpacity);
        QCOMPARE(int(m_host->record.done), 1);
        QCOMPARE(int(m_host->record.error), 0);
        view()->busListenerFunction();
        QCOMPARE(int(m_host->record.error), 1);
    }

    // A streaming thread is in the middle of raising the sink, which has taken what it shares.
    void loadMeetsASinkBeingRaised()
    {
        static std::atomic<bool> raised, met;
        loadAtOnce(*m_host, "./quadrants.webm");
        const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline()));
        const auto hold = [](GstBus *, GstMessage *message, gpointer) {
            GstObject *const source = GST_MESSAGE_SRC(message);
            if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_HAVE_CONTEXT
                && !qstrcmp(GST_OBJECT_NAME(source), "videosink")) {
                raised = true;
                met = blockUntil(
                    [sink = GST_ELEMENT(source)] { return isContended(sink->state_lock); });
            }
            return GST_BUS_PASS;
        };
        gst_bus_set_sync_handler(bus.get(), hold, nullptr, nullptr);
        gst_element_set_state(pipeline(), GST_STATE_PAUSED);
        QVERIFY(blockUntil([] { return raised.load(); }));
        loadAtOnce(*m_host, "yellow.mp4");
        QVERIFY(met);
        m_host.reset(); // finds its display and GL contexts alive
        init();
    }

    // What was queried before the media was moved is not published after it.
    void staleAnswerIsNotPublished()
    {
        takeOverUpdateThread();
        constexpr qint64 untouched = -7;
        m_host->record.position = untouched;
        const ObjectRef<GstPad> sink(gst_element_get_static_pad(view()->videoSink, "sink"));
        const auto move = [](GstPad *, GstPadProbeInfo *, gpointer moved) {
            auto *const host = static_cast<MediaPlayerView *>(moved);
            const Guard guard(host->lock);
            ++host->shared.generation;
            return GST_PAD_PROBE_OK;
        };
        const gulong probe =
            gst_pad_add_probe(sink.get(), GST_PAD_PROBE_TYPE_QUERY_UPSTREAM, move, view(), nullptr);
        view()->busListenerFunction();
        QCOMPARE(m_host->position(), untouched);
        gst_pad_remove_probe(sink.get(), probe);
        view()->busListenerFunction();
        QVERIFY(m_host->position() != untouched);
    }

    // The host's code runs inside a change of state, as a handler of GStreamer's log does.
    void aChangeInsideAChangeIsRefused()
    {
        static std::atomic<int> answer;
        answer = -1;
        const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline()));
        const auto ask = [](GstBus *, GstMessage *, gpointer asked) {
            if (QThread::currentThread() == qApp->thread() && answer < 0)
                answer = static_cast<MediaPlayerView *>(asked)->gstElementSetState(GST_STATE_READY);
            return GST_BUS_PASS;
        };
        gst_bus_set_sync_handler(bus.get(), ask, view(), nullptr);
        std::jthread watch([] {
            if (!blockUntil([] { return answer >= 0; }))
                qFatal("a change of state waits for itself");
        });
        playAtOnce(*m_host, GST_STATE_PAUSED);
        QCOMPARE(int(answer), int(GST_STATE_CHANGE_FAILURE));
        AWAIT_EQUAL(m_host->pipelineStates().first(), int(GST_STATE_PAUSED));
    }

    // The listener gets its turn as soon as the preroll is over.
    void errorOfThePrerollStays()
    {
        takeOverUpdateThread();
        loadAtOnce(*m_host, "tone.flac");
        for (int attempt = 0; attempt < 20; ++attempt) {
            m_host->record.error = 0;
            const auto before = generationOf(view());
            std::thread listener([&] {
                // In NULL the bus takes nothing.
                if (!blockUntil([&] {
                        return generationOf(view()) != before
                            && stateNow(pipeline()).current > GST_STATE_NULL;
                    }))
                    return;
                postError(pipeline());
                blockUntil([&] {
                    view()->busListenerFunction();
                    return loadRelaxed(m_host->record.error) == 1;
                });
            });
            view()->videoItemReady();
            listener.join();
            QCoreApplication::processEvents();
            QCOMPARE(m_host->overlay(), QStringLiteral("Error loading media"));
        }
    }

    void lastOfShowAndHideWins()
    {
        takeOverUpdateThread();
        for (const int show : {0, 1, 2}) { // whatever is not 1 hides
            m_host->control->SysNativeControlShow(show == 1 ? 0 : 1);
            m_host->control->SysNativeControlShow(show);
            pass();
            AWAIT_EQUAL(bool(m_host->record.attached), show == 1);
            pass();
            QVERIFY(!view()->invokePending);
        }
    }

    // A command or restore is queued once, however often a direct call lowers invokePending.
    void directSaveMeetsQueuedSlot()
    {
        takeOverUpdateThread();
        m_host->record.command = MediaPlayerCommandSeek;
        m_host->record.execute = 1;
        const auto generation = generationOf(view());
        pass();
        view()->saveObject();
        pass();
        QCoreApplication::processEvents();
        QCOMPARE(int(m_host->record.execute), 0);
        QCOMPARE(generationOf(view()), generation + 1);

        m_host->control->SysNativeControlShow(1);
        pass();
        view()->saveObject();
        QCOMPARE(int(m_host->record.attached), 0);
        QCoreApplication::processEvents();
        QCOMPARE(int(m_host->record.attached), 1);
        QCOMPARE(view()->videoObject->parentItem(), m_host->item.data());
    }
};

PLAYER_TEST_MAIN(RacesTest)
#include "races_test.moc"
