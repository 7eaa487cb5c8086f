#include "tests/fixture.h"
#include "tests/mediaFiles.h"

// Every common kind of file from its first frame to its end and round again. The whole table runs
// where MEDIA_WHOLE is set, else the quick third of it.

namespace
{

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
    GstPad *const entry = gst_element_get_static_pad(host.view()->audioSink, "sink");
    gst_pad_add_probe(entry, GST_PAD_PROBE_TYPE_BUFFER, onBuffer, heard, nullptr);
    gst_object_unref(entry);
}

} // namespace

class MediaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plays_data()
    {
        QTest::addColumn<const MediaFile *>("file");
        const bool whole = qEnvironmentVariableIsSet("MEDIA_WHOLE");
        for (const MediaFile &file : mediaFiles) {
            if (whole || file.shape.quick)
                QTest::newRow(file.name) << &file;
        }
    }

    void plays()
    {
        QFETCH(const MediaFile *, file);
        bool unsupported = false;
        const QByteArray problem = makeMediaFile(*file, &unsupported);
        if (unsupported)
            QSKIP(problem);
        QCOMPARE(problem, QByteArray());

        std::atomic_bool heard = false;
        Host host((file - mediaFiles.constData()) % 2 ? Host::Quick : Host::Widget);
        host.open({});
        QCOMPARE(host.load(media(file->name)), complete);
        listen(host, &heard);
        const auto rests = [&] {
            if (host.view()->videoSink)
                AWAIT_EQUAL(host.overlay(), QString());
            AWAIT_EQUAL(host.pipelineStates(), QList<int> {GST_STATE_PAUSED});
            AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
            if (file->holds("PICTURE"))
                AWAIT_EQUAL(host.picture(), "RGBW");
        };
        rests();
        const double length = file->shape.indexed ? file->shape.seconds : 0;
        QTRY_VERIFY2_WITH_TIMEOUT(within(host.duration(), length - 0.3, length + 0.3),
                                  QByteArray::number(host.duration()), patience);
        const double duration = double(host.duration()) / GST_SECOND;
        if (!file->shape.firstFrameOnly && !QTest::currentTestFailed()) {
            playToTheEnd(host, file->shape);
            rests();
        }
        if (QTest::currentTestFailed())
            return;
        qInfo("%-20s %8.3f s", file->name, duration);
        if (!file->shape.firstFrameOnly) {
            QCOMPARE(heard, file->holds("audiotestsrc"));
            QCOMPARE(host.play(GST_STATE_PLAYING), complete); // round again
            if (file->shape.seconds > 1)
                AWAIT(within(host.position(), 0.2, file->shape.seconds));
        }
        QCOMPARE(host.record.error, std::int8_t(0));
    }

    void names_data()
    {
        QTest::addColumn<QString>("name");
        const QByteArray longest = QByteArray(51, 'x') + ".mp4"; // a URI of 80 bytes
        for (const QByteArray name : {"UPPER.MP4", "with two spaces.mp4", "Käse Öl ß.mp4",
                                      "100%41 ?#&=+.mp4", longest.constData()})
            QTest::newRow(name) << QString::fromUtf8(name);
    }

    void names()
    {
        QFETCH(QString, name);
        QCOMPARE(makeMediaFile(mediaFiles.first()), QByteArray());
        const QTemporaryDir folder(QStringLiteral("/tmp/names-XXXXXX"));
        const QString original =
            QUrl(QString::fromUtf8(media(mediaFiles.first().name))).toLocalFile();
        QVERIFY(QFile::link(original, folder.filePath(name)));
        Host host(Host::Widget);
        host.open({});
        QCOMPARE(host.load(QUrl::fromLocalFile(folder.filePath(name)).toEncoded()), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.pipelineStates(), QList<int> {GST_STATE_PAUSED});
    }

private:
    /// Plays, seeks on the way if it can, and comes to the end.
    void playToTheEnd(Host &host, const MediaShape &shape)
    {
        std::uint32_t run = 0;
        const auto play = [&] {
            run = loadRelaxed(host.view()->generation);
            QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        };
        // An end goes through READY and NULL.
        const auto ended = [&] { return loadRelaxed(host.view()->generation) > run + 1; };
        play();
        AWAIT(ended() || within(host.position(), 0.2, shape.seconds));
        for (const double target : {shape.seconds / 2, shape.endingFrom}) {
            if (target < 1 || !shape.indexed)
                continue;
            QCOMPARE(host.play(GST_STATE_PAUSED), complete);
            host.record.seekPosition = qint64(target * GST_SECOND);
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
            QTRY_VERIFY2_WITH_TIMEOUT(
                within(host.position(), target - shape.seekSlack, target + 0.3),
                QByteArray::number(host.position()), patience);
            AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
            play();
        }
        AWAIT(ended() && host.state() == GST_STATE_PAUSED && within(host.position(), 0, 0.3));
    }
};

PLAYER_TEST_MAIN(MediaTest)
#include "media_test.moc"
