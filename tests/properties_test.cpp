#include "tests/interleaving.h"
#include "tests/missing.h"
#include "tests/server.h"

#include <QtCore/QBuffer>
#include <QtGui/QImage>

#include <thread>

// What a player tells beside its record, as properties of the object behind `view`.

namespace
{

QString errorText(Host &host)
{
    return host.told("errorText").toString();
}

/// Code of the host's that runs inside the first change of a property.
class Reaction : public QObject
{
public:
    Reaction(Host &host, const std::function<void()> &run) : m_run(run)
    {
        host.view()->installEventFilter(this);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::DynamicPropertyChange || !m_run)
            return false;
        std::exchange(m_run, {})();
        return true; // the object may be gone
    }

private:
    std::function<void()> m_run;
};

void postTags(GstElement *pipeline, GstTagList *tags)
{
    gst_element_post_message(pipeline, gst_message_new_tag(GST_OBJECT(pipeline), tags));
}

} // namespace

class PropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofMedia_data()
    {
        QTest::addColumn<QByteArray>("uri");
        QTest::addColumn<QVariantMap>("expected"); // those of metaData among them
        const QString size = QStringLiteral("videoSize"), video = QStringLiteral("hasVideo"),
                      audio = QStringLiteral("hasAudio"), seeks = QStringLiteral("seekable"),
                      live = QStringLiteral("live"), shape = QStringLiteral("pixelAspectRatio"),
                      title = QStringLiteral("title"), none;
        QTest::newRow("video and sound")
            << media("large.mkv")
            << QVariantMap {{size, QSize(160, 120)},
                            {shape, QSize(1, 1)},
                            {video, true},
                            {audio, true},
                            {seeks, true},
                            {live, false},
                            {title, QStringLiteral("Corners")},
                            {QStringLiteral("contributingArtist"), QStringLiteral("Nobody")},
                            {QStringLiteral("albumTitle"), QStringLiteral("Tests")},
                            {QStringLiteral("language"), QStringLiteral("de")},
                            {QStringLiteral("videoCodec"), QStringLiteral("On2 VP8")},
                            {QStringLiteral("fileFormat"), QStringLiteral("Matroska")}};
        QTest::newRow("turned video")
            << media("turned.mp4")
            << QVariantMap {{size, QSize(120, 160)},
                            {video, true},
                            {audio, false},
                            {title, QVariant()},
                            {QStringLiteral("imageOrientation"), QStringLiteral("rotate-0")}};
        QTest::newRow("sound") << media("tone.flac")
                               << QVariantMap {
                                      {size, QVariant()},
                                      {video, false},
                                      {audio, true},
                                      {seeks, true},
                                      {QStringLiteral("audioCodec"),
                                       QStringLiteral("Free Lossless Audio Codec (FLAC)")}};
        QTest::newRow("live") << QByteArray("testbin://audio,is-live=true,name=a.mp3")
                              << QVariantMap {{audio, true}, {live, true}};
    }

    void ofMedia()
    {
        QFETCH(QByteArray, uri);
        QFETCH(QVariantMap, expected);
        Host host(Host::Quick);
        host.open(uri);
        if (uri.startsWith("testbin"))
            QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        for (auto entry = expected.cbegin(); entry != expected.cend(); ++entry) {
            const QByteArray name = entry.key().toUtf8();
            const auto actual = [&] {
                return host.view()->dynamicPropertyNames().contains(name)
                    ? host.told(name.constData())
                    : host.told("metaData").toMap().value(entry.key());
            };
            AWAIT_OR_SAY(
                actual() == entry.value(),
                (QDebug::toString(actual()) + QStringLiteral(" of ") + entry.key()).toUtf8());
        }
        QVERIFY(errorText(host).isEmpty());
        QVERIFY(!host.told("buffering").isValid() && !host.told("endOfMedia").isValid());
    }

    // The words say what is wrong, whether the load is refused, the media fails, or part of it.
    void errors_data()
    {
        QTest::addColumn<QByteArray>("uri"); // SERVER is filled in
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("words");
        const QString plugin = QStringLiteral("Not installed: ");
        QTest::newRow("a path") << QByteArray("/a.mp4") << failed << 1 << QStringLiteral("/a.mp4");
        QTest::newRow("a text") << QByteArray("file:///a.txt") << failed << 1
                                << QStringLiteral("extension");
        QTest::newRow("no file") << QByteArray("file:///none.mp4") << complete << 1
                                 << QStringLiteral("Resource not found");
        QTest::newRow("404") << QByteArray("SERVER/404/none.mp4") << complete << 1
                             << QStringLiteral("Not Found");
        QTest::newRow("no decoder for the sound")
            << media("quadrants.webm") << complete << 0 << plugin + QStringLiteral("Vorbis");
        QTest::newRow("no decoder at all")
            << media("tone.flac") << complete << 1 << plugin + QStringLiteral("Free Lossless");
        QTest::newRow("no source")
            << QByteArray("nosuch://a.mp4") << complete << 1 << plugin + QStringLiteral("NOSUCH");
    }

    void errors()
    {
        QFETCH(QByteArray, uri);
        QFETCH(QByteArray, answer);
        QFETCH(int, error);
        QFETCH(QString, words);
        Host host(Host::Widget);
        host.open(media("yellow.mp4"));
        AWAIT_EQUAL(host.picture(), "YYYY");
        QVERIFY(errorText(host).isEmpty());

        const Missing missing {"vorbisdec", "avdec_vorbis", "flacdec", "avdec_flac"};
        QCOMPARE(host.load(uri.replace("SERVER/", m_server.uri({}))), answer);
        AWAIT_OR_SAY(errorText(host).contains(words, Qt::CaseInsensitive),
                     errorText(host).toUtf8());
        AWAIT_EQUAL(int(loadRelaxed(host.record.error)), error);

        QCOMPARE(host.load(media("turned.mp4")), complete);
        AWAIT_EQUAL(host.picture(), "BRWG");
        QVERIFY(errorText(host).isEmpty());
    }

    void whatIsMendedIsTakenBack()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("a.flac"));
        Host host(Host::Quick);
        host.open(QUrl::fromLocalFile(path).toEncoded());
        AWAIT(!errorText(host).isEmpty());
        QVERIFY(QFile::copy(QUrl(QString::fromUtf8(media("tone.flac"))).toLocalFile(), path));
        QCOMPARE(host.play(GST_STATE_NULL), complete);
        AWAIT(errorText(host).isEmpty());
    }

    // A picture that is loaded while it is parked cannot be drawn yet, which nobody is told.
    void silentWhileParked()
    {
        Host host(Host::Quick);
        host.open(media("yellow.mp4"));
        AWAIT_EQUAL(host.picture(), "YYYY");
        hideAndPark(host);
        for (const char *name : {"quadrants.webm", "yellow.mp4", "quadrants.webm"})
            QCOMPARE(host.load(media(name)), complete);
        QVERIFY(blockForOnePass(host));
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QVERIFY(errorText(host).isEmpty());
    }

    void endsAreCounted()
    {
        Host host(Host::Quick);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
        for (const int ends : {1, 2}) {
            host.record.seekPosition = 9 * GST_SECOND;
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
            QCOMPARE(host.play(GST_STATE_PLAYING), complete);
            AWAIT_EQUAL(host.told("endOfMedia").toInt(), ends);
            AWAIT(host.position() < GST_SECOND);
        }
        QCOMPARE(host.load(media("yellow.mp4")), complete);
        AWAIT(!host.told("endOfMedia").isValid());
    }

    void coverIsScaled()
    {
        Host host(Host::Quick);
        host.open(media("tone.flac"));
        AWAIT(host.told("hasAudio").toBool());
        QImage picture(2000, 1000, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QBuffer file;
        QVERIFY(file.open(QIODevice::WriteOnly) && picture.save(&file, "png"));
        GstBuffer *const buffer =
            gst_buffer_new_memdup(file.data().constData(), gsize(file.data().size()));
        GstSample *const sample = gst_sample_new(buffer, nullptr, nullptr, nullptr);
        postTags(host.view()->pipeline, gst_tag_list_new(GST_TAG_IMAGE, sample, nullptr));
        gst_sample_unref(sample);
        gst_buffer_unref(buffer);
        const auto cover = [&] {
            return host.told("metaData")
                .toMap()
                .value(QStringLiteral("coverArtImage"))
                .value<QImage>();
        };
        AWAIT_EQUAL(cover().size(), QSize(1024, 512));
        QCOMPARE(cover().pixelColor(500, 250), QColor(Qt::red));
    }

    // The host's code runs inside a change of a property.
    void hostReacts_data() { addKinds(); }
    void hostReacts()
    {
        QFETCH(Host::Kind, kind);
        {
            Host host(kind);
            host.open(media("yellow.mp4"));
            const Reaction other(host, [&] { host.load(media("quadrants.webm")); });
            AWAIT_EQUAL(host.told("videoSize").toSize(), QSize(160, 120));
        }
        Host host(kind);
        host.open(media("quadrants.webm"));
        const Reaction last(host, [&] { delete host.view(); });
        AWAIT(!host.view());
    }

    // Messages come from any thread, and from pipelines whose view is gone.
    void messagesMeetTheEnd()
    {
        std::atomic<bool> posts = true;
        std::thread poster;
        ObjectRef<GstElement> pipeline;
        {
            Host host(Host::Quick);
            host.open(media("quadrants.webm"));
            AWAIT_EQUAL(host.picture(), "RGBW");
            pipeline.reset(GST_ELEMENT(gst_object_ref(host.view()->pipeline)));
            poster = std::thread([&] {
                for (int i = 0; posts; ++i) {
                    postTags(pipeline.get(), gst_tag_list_new(GST_TAG_BITRATE, guint(i), nullptr));
                    std::this_thread::yield();
                }
            });
            for (const char *name : {"yellow.mp4", "quadrants.webm", "tone.flac"})
                QCOMPARE(host.load(media(name)), complete);
            AWAIT(host.told("hasAudio").toBool() && !host.told("hasVideo").toBool());
        }
        const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline.get()));
        gst_bus_set_flushing(bus.get(), false); // as a run that nobody listens to
        postTags(pipeline.get(), gst_tag_list_new(GST_TAG_TITLE, "late", nullptr));
        posts = false;
        poster.join();
        gst_bus_set_flushing(bus.get(), true);
    }

private:
    Server m_server;
};

PLAYER_TEST_MAIN(PropertiesTest)
#include "properties_test.moc"
