#include "pipeline/Relay.h"
#include "pipeline/sequences.h"
#include "tests/interleaving.h"
#include "tests/server.h"

// What plays from a network that is slow, stalls or breaks waits, and goes on where it was.

namespace
{

bool isWaiting(Host &host)
{
    return host.state() == GST_STATE_PAUSED && host.told("buffering").isValid();
}

/// Frames and samples that the sink has shown since it prerolled.
quint64 framesShown(Host &host)
{
    GstStructure *statistics = nullptr;
    g_object_get(host.view()->videoSink, "stats", &statistics, nullptr);
    guint64 rendered = 0;
    gst_structure_get_uint64(statistics, "rendered", &rendered);
    gst_structure_free(statistics);
    return rendered;
}

void open(Host &host, const QByteArray &uri)
{
    host.open(uri);
    await("the first frame", [&] { return host.picture() == "RGBW"; });
}

/// Plays until the server's pause is felt.
void playToPause(Host &host, const QByteArray &uri)
{
    open(host, uri);
    host.play(GST_STATE_PLAYING);
    await("a wait for data", [&] { return host.position() > GST_SECOND && isWaiting(host); });
}

struct WhileWaiting {
    const char *name;
    int state; ///< when there are data again
    void (*act)(Host &);
    bool endsWait = false;
};

} // namespace

Q_DECLARE_METATYPE(WhileWaiting)

class NetworkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_server.pause(); }

    void plays_data()
    {
        QTest::addColumn<QByteArray>("way");
        QTest::addColumn<bool>("seeks");
        for (const char *way : {"ranges", "ranges-fast", "moved", "ranges-slow"})
            QTest::newRow(way) << QByteArray(way) << true;
        for (const char *way : {"all", "endless-fast"})
            QTest::newRow(way) << QByteArray(way) << false;
    }

    // A seek that the source refuses changes nothing, and is no error.
    void plays()
    {
        QFETCH(QByteArray, way);
        QFETCH(bool, seeks);
        Host host(Host::Quick);
        open(host, m_server.uri(way + "/large.mkv"));
        AWAIT_EQUAL(host.told("live"), QVariant(false));
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > GST_SECOND && host.state() == GST_STATE_PLAYING);
        host.record.seekPosition = 6 * GST_SECOND;
        QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
        if (seeks) {
            AWAIT(host.position() > 6 * GST_SECOND);
        } else {
            AWAIT(!host.told("errorText").toString().isEmpty());
            QVERIFY(blockForOnePass(host));
            QVERIFY(host.position() > GST_SECOND && host.position() < 5 * GST_SECOND);
        }
        AWAIT_EQUAL(host.told("seekable"), QVariant(seeks));
        AWAIT_EQUAL(host.state(), int(GST_STATE_PLAYING));
        QCOMPARE(host.record.error, std::int8_t(0));
    }

    void stall_data() { addKinds(); }
    void stall()
    {
        QFETCH(Host::Kind, kind);
        Host host(kind);
        playToPause(host, m_server.uri("pauses/large.mkv"));
        QVERIFY(blockForOnePass(host)); // which tells where it stands
        const qint64 position = host.position();
        const quint64 frames = framesShown(host);
        QTest::qWait(6000); // the stall itself
        QVERIFY(isWaiting(host));
        QVERIFY(qAbs(host.position() - position) < GST_SECOND / 10);
        m_server.goOn();
        AWAIT(host.state() == GST_STATE_PLAYING && !host.told("buffering").isValid());
        QVERIFY(host.position() < position + GST_SECOND);
        AWAIT(framesShown(host) > frames + 10);
        QCOMPARE(host.picture(), "RGBW");
        AWAIT(host.told("endOfMedia").toInt() == 1);
        QCOMPARE(host.record.error, std::int8_t(0));
    }

    void commandsMeetWait_data()
    {
        QTest::addColumn<WhileWaiting>("row");
        static const WhileWaiting rows[] = {
            {"play", GST_STATE_PLAYING, [](Host &host) { host.play(GST_STATE_PLAYING); }},
            {"pause", GST_STATE_PAUSED, [](Host &host) { host.play(GST_STATE_PAUSED); }},
            {"pause and play", GST_STATE_PLAYING,
             [](Host &host) {
                 host.play(GST_STATE_PAUSED);
                 host.play(GST_STATE_PLAYING);
             }},
            {"stop", GST_STATE_PAUSED, [](Host &host) { host.play(GST_STATE_NULL); }},
            {"another file", GST_STATE_PAUSED, [](Host &host) { host.load(media("yellow.mp4")); }},
            {"parking", GST_STATE_PLAYING, hideAndPark},
            {"parking with a pause", GST_STATE_PAUSED,
             [](Host &host) {
                 host.record.pauseOnSave = 1;
                 hideAndPark(host);
             }},
            {"parking with a pause, and back", GST_STATE_PLAYING,
             [](Host &host) {
                 host.record.pauseOnSave = host.record.resumeOnRestore = 1;
                 hideAndPark(host);
                 host.control->SysNativeControlShow(1);
                 await("the picture", [&] { return loadRelaxed(host.record.attached) == 1; });
             }},
        };
        for (const WhileWaiting &row : rows)
            QTest::newRow(row.name) << row;
    }

    // What was asked for last comes when there are data, and nothing else.
    void commandsMeetWait()
    {
        QFETCH(WhileWaiting, row);
        Host host(Host::Quick);
        playToPause(host, m_server.uri("pauses/large.mkv"));
        row.act(host);
        QVERIFY(blockForOnePass(host));
        AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
        m_server.goOn();
        AWAIT(!host.told("buffering").isValid());
        QVERIFY(blockForOnePass(host));
        AWAIT_EQUAL(host.state(), row.state);
        QCOMPARE(host.record.error, std::int8_t(0));
    }

    // The command comes when data are short, and before the update thread has paused the media.
    void aCommandBeforeTheWait()
    {
        Host host(Host::Quick);
        open(host, m_server.uri("ranges/large.mkv"));
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > GST_SECOND && host.state() == GST_STATE_PLAYING);
        GstElement *const pipeline = host.view()->pipeline;
        const auto tell = [&](int percent) {
            gst_element_post_message(pipeline,
                                     gst_message_new_buffering(GST_OBJECT(pipeline), percent));
        };
        {
            const Turn turn(*host.view());
            tell(1);
            setState(*host.view(), GST_STATE_PLAYING);
        }
        AWAIT_EQUAL(host.pipelineStates().constFirst(), int(GST_STATE_PAUSED));
        tell(100);
        AWAIT_EQUAL(host.pipelineStates().constFirst(), int(GST_STATE_PLAYING));
        AWAIT_EQUAL(host.state(), int(GST_STATE_PLAYING));
    }

    // Neither files nor live sources are paused, whatever is said of their buffers.
    void othersNeverWait_data()
    {
        QTest::addColumn<QByteArray>("uri");
        QTest::newRow("file") << media("quadrants.webm");
        QTest::newRow("live") << QByteArray("testbin://audio,is-live=true,name=a.mp3");
    }
    void othersNeverWait()
    {
        QFETCH(QByteArray, uri);
        Host host(Host::Quick);
        host.open(uri);
        AWAIT(host.state() == GST_STATE_PAUSED);
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.told("live").isValid() && host.told("hasAudio").isValid());
        // The live pipeline may come to play at any time, or never.
        const bool plays = !uri.startsWith("testbin");
        AWAIT(host.state() == GST_STATE_PLAYING || !plays);
        GstElement *const pipeline = host.view()->pipeline;
        gst_element_post_message(pipeline, gst_message_new_buffering(GST_OBJECT(pipeline), 1));
        QVERIFY(blockForOnePass(host));
        QVERIFY(!host.view()->relay->supply.held);
        QVERIFY(host.state() == GST_STATE_PLAYING || !plays);
        AWAIT(!host.told("buffering").isValid());
    }

    // Before the first frame and after it. Whoever sends, however little, is waited for.
    void silence()
    {
        Host never(Host::Quick), nothing(Host::Quick), drips(Host::Quick);
        Host later(Host::Quick); // over the others, since its picture is looked at
        playToPause(later, m_server.uri("ranges-pauses/large.mkv")); // GStreamer asks again
        never.open(m_server.uri("silent/large.mkv"));
        nothing.open(m_server.uri("starts/large.mkv"));
        drips.open(m_server.uri("drip/large.mkv"));
        QElapsedTimer clock;
        clock.start();
        for (Host *host : {&never, &nothing, &later}) {
            while (!loadRelaxed(host->record.error) && clock.elapsed() < 60'000)
                QTest::qWait(50);
            QVERIFY(clock.elapsed() > 10'000 && clock.elapsed() < 60'000);
            AWAIT(!host->told("errorText").toString().isEmpty());
        }
        QVERIFY(later.told("errorText").toString().contains(QLatin1String("30")));
        QTest::qWait(2000);
        QCOMPARE(drips.record.error, std::int8_t(0));
    }

private:
    Server m_server;
};

PLAYER_TEST_MAIN(NetworkTest)
#include "network_test.moc"
