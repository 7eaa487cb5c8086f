#include "tests/interleaving.h"

#include "update/cThread.h"

#include <thread>

namespace
{

/// What is forgotten of the messages that a command finds on the bus.
enum Forgets { Nothing, End, All };

struct Command {
    const char *name;
    Forgets forgets;
    int state; ///< of the pipeline that is current afterwards; 0 for none
    void (*run)(Host &);
};

const Command commands[] = {
    {"load", All, GST_STATE_PAUSED, [](Host &host) { loadAtOnce(host, "tone.flac"); }},
    {"load, cached", All, GST_STATE_PAUSED, [](Host &host) { loadAtOnce(host, "yellow.mp4"); }},
    {"load and return", All, GST_STATE_PAUSED,
     [](Host &host) {
         loadAtOnce(host, "yellow.mp4");
         loadAtOnce(host, "quadrants.webm");
     }},
    {"play", Nothing, GST_STATE_PLAYING, [](Host &host) { playAtOnce(host, GST_STATE_PLAYING); }},
    {"stop", All, GST_STATE_PAUSED, [](Host &host) { playAtOnce(host, GST_STATE_NULL); }},
    {"seek", End, GST_STATE_PAUSED, [](Host &host) { runAtOnce(host, MediaPlayerCommandSeek); }},
    {"rebind", All, GST_STATE_PAUSED,
     [](Host &host) { runAtOnce(host, MediaPlayerCommandRebind); }},
    {"unrefPipe", All, 0, [](Host &host) { host.view()->unrefPipe(); }},
    {"destructor", Nothing, 0, [](Host &host) { delete host.view(); }},
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

    /// Does `meanwhile` when another thread has come to the lock in the middle of `other`.
    bool meetAtLock(const std::function<void()> &other, const std::function<void()> &meanwhile)
    {
        std::unique_lock guard(view()->lock);
        std::thread thread(other);
        const bool met = blockUntil([this] { return isContended(view()->lock); });
        meanwhile();
        guard.unlock();
        thread.join();
        return met;
    }

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
                QVERIFY(built->pipeline == pipeline() || !view()->isAboveReady(built->pipeline));
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
        const auto generation = loadRelaxed(meeting->generation);
        command.run(*m_host);
        QVERIFY(gate.passed);
        if (view() && !pipeline()) // READY for the end; NULL and no pipeline for unrefPipe
            QCOMPARE(meeting->generation, generation + 3);
        AWAIT_EQUAL(view() && pipeline() ? m_host->pipelineStates().first() : 0, command.state);
    }

    // The listener has seen the end of stream and waits for the lock, which the command holds.
    void commandOvertakesEnd_data() { addCommands(End); }
    void commandOvertakesEnd()
    {
        QFETCH(Command, command);
        takeOverUpdateThread();
        const ObjectRef<GstElement> ended(GST_ELEMENT(gst_object_ref(pipeline())));
        postEnd(ended.get());
        postError(ended.get());
        Gate gate(view());
        std::atomic<bool> finished = false;
        std::thread listener([&] {
            blockUntil([&] { return gate.reached || finished; });
            view()->drainBus(ended.get());
        });
        command.run(*m_host);
        finished = true;
        const auto generation = view()->generation;
        listener.join();
        view()->busListenerFunction(); // what is left is heard now
        QCOMPARE(view()->generation, generation); // not rewound
        QCOMPARE(int(m_host->record.error), int(command.forgets == End));
    }

    void errorWaitsForTheReport()
    {
        takeOverUpdateThread();
        QVERIFY(meetAtLock([this] { view()->report(true); }, [this] { view()->handleError(); }));
        QCOMPARE(int(m_host->record.done), 1);
        QCOMPARE(int(m_host->record.error), 0);
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
        constexpr qint64 untouched = -1;
        m_host->record.position = untouched;
        QVERIFY(meetAtLock([this] { view()->publish(pipeline()); },
                           [this] { view()->nextGeneration(); }));
        QCOMPARE(m_host->position(), untouched);
        view()->publish(pipeline());
        QVERIFY(m_host->position() != untouched);
    }

    // The listener takes the lock as soon as the preroll lets it go.
    void errorOfThePrerollStays()
    {
        takeOverUpdateThread();
        loadAtOnce(*m_host, "tone.flac");
        for (int attempt = 0; attempt < 20; ++attempt) {
            const auto before = view()->generation;
            std::thread listener([&] {
                if (blockUntil([&] { return loadRelaxed(view()->generation) != before; })
                    && blockUntil([&] { return view()->lock.try_lock(); })) {
                    view()->handleError();
                    view()->lock.unlock();
                }
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
        for (const int show : {0, 1, 0}) {
            m_host->control->SysNativeControlShow(1 - show);
            m_host->control->SysNativeControlShow(show);
            view()->updatePass();
            AWAIT_EQUAL(int(m_host->record.attached), show);
            view()->updatePass();
            QVERIFY(!view()->invokePending);
        }
    }

    // A command or restore is queued once, however often a direct call lowers invokePending.
    void directSaveMeetsQueuedSlot()
    {
        takeOverUpdateThread();
        m_host->record.command = MediaPlayerCommandSeek;
        m_host->record.execute = 1;
        const auto generation = view()->generation;
        view()->updatePass();
        view()->saveObject();
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
};

PLAYER_TEST_MAIN(RacesTest)
#include "races_test.moc"
