#include "pipeline/GstHandle.h"
#include "pipeline/padAdded.h"
#include "tests/fixture.h"

#include <gst/base/gstbasesink.h>

// Streams of a made-up decoder, offered in every order, and what becomes of the pipeline.

namespace
{

#define VIDEO "capsfilter caps=video/x-raw,framerate=30/1,width=64,height=48,format="
#define DOCUMENTED "audiosink glcolorconvert glupload videosink volume"
#define SOUND "capsfilter caps=audio/x-raw,rate=44100,"

// The last two never push anything: what stays unlinked would end a source that is no decoder.
const QHash<QByteArray, const char *> streams = {
    {"video", "videotestsrc ! " VIDEO "I420"},
    {"deepVideo", "videotestsrc ! " VIDEO "I420_10LE"},
    {"sound", "audiotestsrc ! " SOUND "channels=1,format=S16LE"},
    {"planarSound", "audiotestsrc ! " SOUND "channels=2,format=F32LE,layout=non-interleaved"},
    {"text", "identity ! capsfilter caps=text/x-raw,format=utf8"},
    {"otherSound", "identity ! capsfilter caps=audio/x-raw,format=S16LE"},
};

/// A player whose film offers nothing by itself.
struct Offering : Host {
    Offering() : Host(Widget)
    {
        open({});
        setFileName(media("quadrants.webm") + '\0');
        if (!view()->loadFile())
            qFatal("no film");
        // Its item lets it preroll later.
        gst_element_set_locked_state(view()->source, true);
        gst_element_set_state(view()->source, GST_STATE_NULL);
    }

    void offer(const QByteArray &name, const QByteArray &stream)
    {
        GstElement *const bin = gst_parse_bin_from_description(stream.constData(), true, nullptr);
        gst_object_set_name(GST_OBJECT(bin), name.constData());
        gst_bin_add(GST_BIN(view()->pipeline), bin);
        const ObjectRef<GstPad> pad(gst_element_get_static_pad(bin, "src"));
        pad_added_handler(bin, pad.get(), view());
        gst_element_sync_state_with_parent(bin);
    }

    /// Whether the sink draws the picture as decoders have it.
    bool sinkTakesYuv()
    {
        const CapsRef caps(
            gst_pad_template_get_caps(gst_element_get_pad_template(view()->videoSink, "sink")));
        const GlibText text(gst_caps_to_string(caps.get()));
        return strstr(text.get(), "NV12");
    }

    ObjectRef<GstElement> find(const char *name)
    {
        return ObjectRef<GstElement>(gst_bin_get_by_name(GST_BIN(view()->pipeline), name));
    }
};

/// A sound device that takes one format only, which is known when it is open.
void initNarrowDevice(gpointer type, gpointer)
{
    static GstStaticPadTemplate entry = GST_STATIC_PAD_TEMPLATE(
        "sink", GST_PAD_SINK, GST_PAD_ALWAYS,
        GST_STATIC_CAPS("audio/x-raw,format=S16LE,channels=1,layout=interleaved"));
    gst_element_class_add_static_pad_template(GST_ELEMENT_CLASS(type), &entry);
    gst_element_class_set_static_metadata(GST_ELEMENT_CLASS(type), "n", "Sink/Audio", "n", "n");
}

} // namespace

class ChainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        gst_init(nullptr, nullptr);
        const GType type = g_type_register_static_simple(
            GST_TYPE_BASE_SINK, "NarrowDevice", sizeof(GstBaseSinkClass), initNarrowDevice,
            sizeof(GstBaseSink), nullptr, GTypeFlags());
        QVERIFY(gst_element_register(nullptr, "narrowdevice", GST_RANK_PRIMARY + 1, type));
    }

    void streamsInEveryOrder_data()
    {
        QTest::addColumn<QString>("elements");
        QTest::newRow("sound video") << DOCUMENTED;
        QTest::newRow("text video sound") << DOCUMENTED;
        QTest::newRow("video text") << "glcolorconvert glupload videosink";
        QTest::newRow("sound") << "audiosink volume";
        QTest::newRow("video text planarSound otherSound") << "audiofilter " DOCUMENTED;
        QTest::newRow("text deepVideo") << "glcolorconvert glupload videofilter videosink";
        QTest::newRow("tone.flac") << "audiofilter audiosink volume"; // stereo
    }

    void streamsInEveryOrder()
    {
        QFETCH(QString, elements);
        const QByteArray offered = QTest::currentDataTag();
        Offering host;
        if (offered == "tone.flac") {
            QCOMPARE(host.load(media("tone.flac")), complete);
        } else {
            for (const QByteArray &name : offered.split(' '))
                host.offer(name, streams[name]);
            no_more_pads_handler(host.view()->source, host.view());
        }
        AWAIT_EQUAL(host.pipelineStates().constFirst(), int(GST_STATE_PAUSED));
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > GST_SECOND / 2);
        QCOMPARE(host.record.error, std::int8_t(0));
        if (host.view()->videoSink && host.sinkTakesYuv() && offered.contains("video"))
            elements += QStringLiteral(" videofilter");
        for (const char *name : {"audiofilter", "audiosink", "glcolorconvert", "glupload",
                                 "videofilter", "videosink", "volume"})
            QVERIFY2(bool(host.find(name)) == elements.contains(QLatin1String(name)), name);
    }

    // The tag comes after the format; a later one turns the picture again.
    void picturesStandUpright_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QByteArray>("upright");
        const QString plain = QStringLiteral("I420"), wide = QStringLiteral("Y42B");
        const QString inGraphicsMemory = QStringLiteral("I420 ! glupload");
        const auto row = [](const char *tag, const QString &format, const char *upright) {
            QTest::addRow("%s %s", tag, qPrintable(format)) << tag << format << QByteArray(upright);
        };
        row("rotate-0", plain, "RGBW");
        row("rotate-90", plain, "BRWG");
        row("rotate-180", plain, "WBGR");
        row("rotate-270", plain, "GWRB");
        row("flip-rotate-0", plain, "GRWB");
        row("flip-rotate-90", plain, "WGBR");
        row("flip-rotate-180", plain, "BWRG");
        row("flip-rotate-270", plain, "RBGW");
        row("rotate-90", wide, "BRWG");
        row("rotate-90", inGraphicsMemory, "BRWG");
        row("flip-rotate-270", inGraphicsMemory, "RBGW");
    }

    void picturesStandUpright()
    {
        QFETCH(QString, tag);
        QFETCH(QString, format);
        QFETCH(QByteArray, upright);
        const QString picture = QFile::decodeName(qgetenv("MEDIA_DIR") + "/corners.png");
        constexpr uchar corners[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
        QImage(corners, 2, 2, 6, QImage::Format_RGB888).scaled(160, 120).save(picture);
        Offering host;
        const QString stream =
            QStringLiteral("filesrc location=%1 ! pngdec ! imagefreeze ! videoconvert"
                           " ! video/x-raw,framerate=30/1,format=%2"
                           " ! taginject tags=image-orientation=%3 ! identity name=later")
                .arg(picture, format, tag);
        host.offer("film", stream.toUtf8());
        AWAIT_EQUAL(host.picture(), upright);
        QCOMPARE(bool(host.find("videoturner")), tag != QLatin1String("rotate-0"));
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        const ObjectRef<GstPad> entry(gst_element_get_static_pad(host.find("later").get(), "sink"));
        gst_pad_send_event(
            entry.get(),
            gst_event_new_tag(gst_tag_list_new(GST_TAG_IMAGE_ORIENTATION, "rotate-180", nullptr)));
        AWAIT_EQUAL(host.picture(), "WBGR");
        QCOMPARE(host.record.error, std::int8_t(0));
    }

    // As the standards have it, whether the sink, GL or the processor makes RGB of it.
    void coloursAreRight_data()
    {
        QTest::addColumn<QByteArray>("format");
        for (const char *format :
             {"I420,colorimetry=bt601", "I420,colorimetry=bt709", "I420,colorimetry=1:4:16:4",
              "NV12,colorimetry=1:3:5:1", "I420_10LE,colorimetry=bt709", "Y42B,colorimetry=bt601"})
            QTest::newRow(format) << QByteArray(format);
    }

    void coloursAreRight()
    {
        QFETCH(QByteArray, format);
        const QColor teal(0x20, 0x90, 0xb0);
        Offering host;
        host.offer("film",
                   "videotestsrc pattern=solid-color foreground-color=0xff2090b0"
                   " ! video/x-raw,format=RGBA,width=160,height=120 ! videoconvert"
                   " ! capsfilter caps=video/x-raw,format="
                       + format);
        if (!host.sinkTakesYuv() && format.contains("=1:"))
            QSKIP("GStreamer 1.22 converts every picture as one of limited range");
        QColor seen;
        const auto isNear = [&] {
            seen =
                host.widget->screen()->grabWindow(host.widget->winId()).toImage().pixel(160, 120);
            return qAbs(seen.red() - teal.red()) <= 4 && qAbs(seen.green() - teal.green()) <= 4
                && qAbs(seen.blue() - teal.blue()) <= 4;
        };
        AWAIT_OR_SAY(isNear(), qPrintable(seen.name()));
        if (host.sinkTakesYuv() && !format.startsWith("Y42B")) {
            const ObjectRef<GstPad> entry(
                gst_element_get_static_pad(host.view()->videoSink, "sink"));
            const CapsRef caps(gst_pad_get_current_caps(entry.get()));
            const GlibText text(gst_caps_to_string(caps.get()));
            QVERIFY2(strstr(text.get(), "NV12"), text.get());
        }
    }

    void turnedFile_data() { addKinds(); }
    void turnedFile()
    {
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open({});
        for (const char *file : {"turned.mp4", "quadrants.webm", "turned.mp4"}) {
            QCOMPARE(host.load(media(file)), complete);
            AWAIT_EQUAL(host.picture(), file[0] == 't' ? "BRWG" : "RGBW");
        }
        // What commands do comes on top. The upright picture fills an item twice as high as the
        // window; one on its side would leave the upper quarter empty.
        host.record.keepAspectRatio = 1;
        host.record.cropBottom = 240;
        host.record.transformBit0 = 1;
        for (const int command : {12, 10})
            QCOMPARE(host.run(command), complete);
        AWAIT_EQUAL(host.picture(), "BRBR");
        QCOMPARE(host.run(9), complete);
        AWAIT_EQUAL(host.picture(), "RBRB");
    }
};

PLAYER_TEST_MAIN(ChainTest)
#include "chain_test.moc"
