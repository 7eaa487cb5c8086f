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
        QTest::newRow("video text planarSound otherSound") << "audioconverter " DOCUMENTED;
        QTest::newRow("text deepVideo") << "glcolorconvert glupload videoconverter videosink";
        QTest::newRow("tone.flac") << "audioconverter audiosink volume"; // stereo
    }

    void streamsInEveryOrder()
    {
        QFETCH(QString, elements);
        const QByteArray offered = QTest::currentDataTag();
        const bool isFile = offered == "tone.flac";
        Host host(Host::Widget);
        host.open({});
        host.setFileName(media(isFile ? "tone.flac" : "quadrants.webm") + '\0');
        QVERIFY(host.view()->loadFile());
        GstElement *const source = host.view()->source, *const pipeline = host.view()->pipeline;
        if (!isFile) {
            // What it would offer itself is replaced, before its item lets it preroll.
            gst_element_set_locked_state(source, true);
            gst_element_set_state(source, GST_STATE_NULL);
            for (const QByteArray &name : offered.split(' ')) {
                GstElement *const bin =
                    gst_parse_bin_from_description(streams[name], true, nullptr);
                gst_object_set_name(GST_OBJECT(bin), name.constData());
                gst_bin_add(GST_BIN(pipeline), bin);
                const ObjectRef<GstPad> pad(gst_element_get_static_pad(bin, "src"));
                pad_added_handler(bin, pad.get(), host.view());
                gst_element_sync_state_with_parent(bin);
            }
            no_more_pads_handler(source, host.view());
        }
        AWAIT_EQUAL(host.pipelineStates(), QList<int> {GST_STATE_PAUSED});
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > GST_SECOND / 2);
        QCOMPARE(host.record.error, std::int8_t(0));
        for (const char *name : {"audioconverter", "audiosink", "glcolorconvert", "glupload",
                                 "videoconverter", "videosink", "volume"}) {
            const ObjectRef<GstElement> found(gst_bin_get_by_name(GST_BIN(pipeline), name));
            QVERIFY2(bool(found) == elements.contains(QLatin1String(name)), name);
        }
    }
};

PLAYER_TEST_MAIN(ChainTest)
#include "chain_test.moc"
