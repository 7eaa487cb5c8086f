#include "tests/fixture.h"
#include "tests/mediaFiles.h"

// Every common kind of file from its first frame to its end and round again. The whole table runs
// where MEDIA_WHOLE is set, else the quick third of it.

namespace
{

constexpr int longestUri = sizeof MediaPlayerParams::fileName - 1;

bool within(qint64 time, double from, double to)
{
    return double(time) >= from * GST_SECOND && double(time) <= to * GST_SECOND;
}

/// Tells as soon as something else than silence comes to the player's audio sink.
void listen(Host &host, std::atomic_bool *heard)
{
    const auto onBuffer = [](GstPad *, GstPadProbeInfo *info, gpointer told) {
        GstMapInfo map;
        if (gst_buffer_map(GST_PAD_PROBE_INFO_BUFFER(info), &map, GST_MAP_READ)) {
            const guint8 *const start = map.data, *const end = start + map.size;
            if (std::adjacent_find(start, end, std::not_equal_to<>()) != end)
                *static_cast<std::atomic_bool *>(told) = true;
            gst_buffer_unmap(GST_PAD_PROBE_INFO_BUFFER(info), &map);
        }
        return GST_PAD_PROBE_OK;
    };
    gst_pad_add_probe(GST_PAD(host.view()->audioSink->sinkpads->data), GST_PAD_PROBE_TYPE_BUFFER,
                      onBuffer, heard, nullptr);
}

} // namespace

class MediaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plays_data()
    {
        QTest::addColumn<const MediaFile *>("file");
        for (const MediaFile &file : mediaFiles) {
            if (file.shape.quick || qEnvironmentVariableIsSet("MEDIA_WHOLE"))
                QTest::newRow(file.name) << &file;
        }
    }

    void plays()
    {
        QFETCH(const MediaFile *, file);
        const MediaShape &shape = file->shape;
        const QByteArray problem = makeMediaFile(*file);
        if (problem.startsWith(noEncoder))
            QSKIP(problem);
        QCOMPARE(problem, QByteArray());
        QByteArray uri = media(QByteArray(file->name).toPercentEncoding().constData());
        uri.insert(strlen("file://"), QByteArray(longestUri - uri.size(), '/'));

        std::atomic_bool heard = false;
        Host host((file - mediaFiles.constData()) % 2 ? Host::Quick : Host::Widget);
        host.open({});
        QCOMPARE(host.load(uri), complete);
        listen(host, &heard);
        const auto rests = [&] {
            if (host.view()->videoSink)
                AWAIT_EQUAL(host.overlay(), QString());
            AWAIT_EQUAL(host.pipelineStates(), QList<int> {GST_STATE_PAUSED});
            AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
            if (strstr(file->streams, "PICTURE"))
                AWAIT_EQUAL(host.picture(), "RGBW");
        };
        rests();
        const double length = shape.indexed ? shape.seconds : 0;
        AWAIT_OR_SAY(within(host.duration(), length - 0.3, length + 0.3),
                     QByteArray::number(host.duration()));
        if (!QTest::currentTestFailed())
            playToTheEnd(host, shape);
        rests();
        QCOMPARE(heard, strstr(file->streams, "audiotestsrc") != nullptr);
        QCOMPARE(host.play(GST_STATE_PLAYING), complete); // round again
        if (shape.seconds > 1)
            AWAIT(within(host.position(), 0.2, shape.seconds));
        QCOMPARE(host.record.error, std::int8_t(0));
    }

private:
    /// Plays, seeks on the way if it can, and comes to the end.
    void playToTheEnd(Host &host, const MediaShape &shape)
    {
        std::uint32_t run = 0;
        const auto play = [&] {
            run = generationOf(host.view());
            QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        };
        // An end goes through READY and NULL.
        const auto ended = [&] { return generationOf(host.view()) > run + 1; };
        play();
        AWAIT(ended() || within(host.position(), 0.2, shape.seconds));
        for (const double target : {shape.seconds / 2, shape.seconds - 2}) {
            if (target < 1 || !shape.indexed)
                continue;
            QCOMPARE(host.play(GST_STATE_PAUSED), complete);
            host.record.seekPosition = qint64(target * GST_SECOND);
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
            AWAIT_OR_SAY(within(host.position(), target - shape.seekSlack, target + 0.3),
                         QByteArray::number(host.position()));
            AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
            play();
        }
        AWAIT(ended() && host.state() == GST_STATE_PAUSED && within(host.position(), 0, 0.3));
    }
};

PLAYER_TEST_MAIN(MediaTest)
#include "media_test.moc"
