#include "tests/interleaving.h"

#include "pipeline/stateChange.h"

#include <QtQuick/QQuickWindow>

#include <unistd.h>

#include <thread>

// What a player publishes and shows is what happens in it.

namespace
{

void postElementMessage(GstElement *pipeline)
{
    GstStructure *const nothing = gst_structure_new_empty("storm");
    gst_element_post_message(pipeline, gst_message_new_element(GST_OBJECT(pipeline), nothing));
}

} // namespace

class PublishedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void aMissingFileHasNoPosition()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        host.load(media("missing.webm"));
        AWAIT_EQUAL(host.overlay(), QLatin1String("Error loading media"));
        AWAIT_EQUAL(host.position(), -1);
        AWAIT_EQUAL(host.duration(), 0);
    }

    // The listener speaks of the film before when a load has begun that no command has asked for.
    void theFilmBeforeHasNoSay()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        static MediaPlayerView *view;
        view = host.view();
        GstElement *const before = view->pipeline;
        const ObjectRef<GstBus> bus(gst_element_get_bus(before));
        const auto speak = [](GstBus *, GstMessage *message, gpointer pipeline) {
            if (GST_MESSAGE_SRC(message) == pipeline)
                view->showOverlayOf(static_cast<GstElement *>(pipeline), QStringLiteral("before"));
            return GST_BUS_PASS;
        };
        gst_bus_set_sync_handler(bus.get(), speak, before, nullptr);
        host.setFileName(media("tone.flac") + '\0');
        QVERIFY(view->loadFile());
        gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
        QVERIFY(blockForOnePass(host));
        QCoreApplication::processEvents();
        QCOMPARE(host.overlay(), QLatin1String("Loading media ..."));
    }

    // Its window has never been shown, so its first frame has never come.
    void aReturnHidesTheOverlay()
    {
        Host host(Host::Quick, {320, 240}, Host::Hidden);
        host.open(media("tone.flac"));
        for (const char *name : {"quadrants.webm", "tone.flac", "quadrants.webm"})
            QCOMPARE(host.load(media(name)), complete);
        QVERIFY(blockForOnePass(host));
        QCoreApplication::processEvents();
        QCOMPARE(host.overlay(), QString());
        QCOMPARE(int(loadRelaxed(host.record.error)), 0);

        // Its sink refuses every state until it is shown. The film stops all the same.
        GstElement *const film = host.view()->source;
        QCOMPARE(host.load(media("tone.flac")), complete);
        QVERIFY(!isAboveReady(film));
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        host.setShown(true);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
        QCOMPARE(host.overlay(), QString());
    }

    void whatIsShownHasNoOverlay_data()
    {
        QTest::addColumn<Host::Kind>("kind");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("state");
        for (const auto kind : {Host::Widget, Host::Quick}) {
            for (const char *name : {"yellow.mp4", "tone.flac"})
                QTest::addRow("%s%d", name, kind)
                    << kind << QByteArray(name)
                    << int((kind == Host::Quick) == (*name == 't') ? GST_STATE_NULL
                                                                   : GST_STATE_PAUSED);
        }
    }
    void whatIsShownHasNoOverlay()
    {
        QFETCH(Host::Kind, kind);
        QFETCH(QByteArray, name);
        QFETCH(int, state);
        Host host(kind);
        openAndPlay(host);
        hideAndPark(host);
        QCOMPARE(host.load(media(name.constData())), complete);
        QCOMPARE(host.play(state), complete);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(int(loadRelaxed(host.record.attached)), 1);
        AWAIT_EQUAL(host.overlay(), QString());
        if (name == "yellow.mp4")
            AWAIT_EQUAL(host.picture(), "YYYY");
    }

    void aWindowThatComesLaterShowsThePicture()
    {
        Host host(Host::Quick, {320, 240}, Host::Hidden);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.state(), GST_STATE_READY);
        QMetaObject::invokeMethod(host.view(), "videoItemReady");
        host.setShown(true);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
    }

    // It comes while the command takes the pipeline down.
    void anErrorOfARunThatIsStoppedIsTold_data()
    {
        QTest::addColumn<int>("state");
        QTest::newRow("READY") << int(GST_STATE_READY);
        QTest::newRow("NULL") << int(GST_STATE_NULL);
        QTest::newRow("straight to NULL") << -1;
    }
    void anErrorOfARunThatIsStoppedIsTold()
    {
        QFETCH(int, state);
        Host host(Host::Quick);
        openAndPlay(host);
        GstElement *const pipeline = host.view()->pipeline;
        static std::atomic<bool> posted;
        posted = false;
        const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline));
        const auto fail = [](GstBus *, GstMessage *message, gpointer failing) {
            GstState now = GST_STATE_NULL;
            if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_STATE_CHANGED)
                gst_message_parse_state_changed(message, nullptr, &now, nullptr);
            if (now == GST_STATE_READY && !posted.exchange(true))
                postError(static_cast<GstElement *>(failing));
            return GST_BUS_PASS;
        };
        gst_bus_set_sync_handler(bus.get(), fail, pipeline, nullptr);
        if (state < 0)
            QMetaObject::invokeMethod(host.view(), "nulldownAndPauseOnGuiThread");
        else
            QCOMPARE(host.play(state), complete);
        QVERIFY(posted);
        AWAIT_EQUAL(host.overlay(), QLatin1String("Error loading media"));
        AWAIT_EQUAL(int(loadRelaxed(host.record.error)), 1);
    }

    // The video item is initialised once more where the picture comes back, also under sound.
    void aFailureIsToldAgainInAnotherWindow()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        QCOMPARE(host.load("file:///none.mp3"), complete);
        AWAIT_EQUAL(int(loadRelaxed(host.record.error)), 1);
        hideAndPark(host);
        storeRelaxed(host.record.error, std::int8_t(0));
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(int(loadRelaxed(host.record.error)), 1);
        AWAIT_EQUAL(host.overlay(), QLatin1String("Error loading media"));
    }

    void noStateIsNoChange()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        QCOMPARE(host.play(GST_STATE_VOID_PENDING), complete);
        const qint64 before = host.position();
        AWAIT(host.state() == GST_STATE_PLAYING && host.position() > before + GST_SECOND / 2);
    }

    void messagesWithoutAPauseHoldNothingUp()
    {
        Captured errors(STDERR_FILENO);
        Host host(Host::Quick);
        openAndPlay(host);
        std::jthread storm([pipeline = host.view()->pipeline](const std::stop_token &ended) {
            for (; !ended.stop_requested();
                 std::this_thread::sleep_for(std::chrono::milliseconds(1)))
                postElementMessage(pipeline);
        });
        const qint64 before = host.position();
        AWAIT(host.position() > before + GST_SECOND / 2);
        QCOMPARE(host.play(GST_STATE_PAUSED), complete);
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
    }

    // The run that a seek begins may end before the seek has returned.
    void theEndAfterASeekCounts()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        const ObjectRef<GstPad> entry(gst_element_get_static_pad(host.view()->audioSink, "sink"));
        const auto end = [](GstPad *, GstPadProbeInfo *info, gpointer pipeline) {
            GstEvent *const event = GST_PAD_PROBE_INFO_EVENT(info);
            if (GST_EVENT_TYPE(event) != GST_EVENT_FLUSH_STOP)
                return GST_PAD_PROBE_OK;
            GstMessage *const ended = gst_message_new_eos(static_cast<GstObject *>(pipeline));
            gst_message_set_seqnum(ended, gst_event_get_seqnum(event));
            gst_element_post_message(static_cast<GstElement *>(pipeline), ended);
            return GST_PAD_PROBE_REMOVE;
        };
        gst_pad_add_probe(entry.get(), GST_PAD_PROBE_TYPE_EVENT_FLUSH, end, host.view()->pipeline,
                          nullptr);
        QCOMPARE(host.play(GST_STATE_PAUSED), complete);
        host.record.seekPosition = 2 * GST_SECOND;
        QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
        AWAIT_EQUAL(host.position(), 0);
        QVERIFY(blockForOnePass(host)); // it stays there
        QCOMPARE(host.position(), 0);
    }

    void thePictureStaysInItsPlace()
    {
        Host host(Host::Quick);
        host.open(media("quadrants.webm"));
        host.item->setX(120);
        host.item->setWidth(200);
        AWAIT_EQUAL(host.picture(), "MGMW");
        host.record.cropLeft = 120; // now as wide as the window and more
        host.record.cropRight = 280;
        host.record.cropBottom = 240;
        host.item->setHeight(120);
        QCOMPARE(host.run(MediaPlayerCommandCrop), complete);
        AWAIT_EQUAL(host.picture(), "MRMM");
        host.item->setHeight(240); // keeps the margins
        AWAIT_EQUAL(host.picture(), "MRMR");
    }
};

PLAYER_TEST_MAIN(PublishedTest)
#include "published_test.moc"
