#include "pipeline/GstHandle.h"
#include "pipeline/padAdded.h"
#include "tests/fixture.h"

#include <gst/base/gstbasesink.h>

// Streams of a made-up decoder, offered in every order, and what becomes of the pipeline.

namespace
{

#define VIDEO "capsfilter caps=video/x-raw,framerate=30/1,width=64,height=48,format="
#define DOCUMENTED "audiosink glcolorconvert glupload uridecodebin videosink volume"
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

/// A sound device that takes one format only.
void initNarrowDevice(gpointer type, gpointer)
{
    static GstStaticPadTemplate entry = GST_STATIC_PAD_TEMPLATE(
        "sink", GST_PAD_SINK, GST_PAD_ALWAYS,
        GST_STATIC_CAPS("audio/x-raw,format=S16LE,rate=48000,layout=interleaved"));
    gst_element_class_add_static_pad_template(GST_ELEMENT_CLASS(type), &entry);
    gst_element_class_set_static_metadata(GST_ELEMENT_CLASS(type), "n", "Sink/Audio", "n", "n");
}

/// The elements that are there beside the made-up decoder's.
QByteArray elementsOf(GstElement *pipeline)
{
    QByteArrayList names;
    for (const GList *child = GST_BIN_CHILDREN(pipeline); child; child = child->next) {
        if (!streams.contains(GST_ELEMENT_NAME(child->data)))
            names += GST_ELEMENT_NAME(child->data);
    }
    std::sort(names.begin(), names.end());
    return names.join(' ');
}

} // namespace

class ChainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { enableDebug = 0; }

    void streamsInEveryOrder_data()
    {
        QTest::addColumn<int>("refused");
        QTest::addColumn<QByteArray>("elements");
        const auto row = [](const char *offered, int refused, const char *elements) {
            QTest::newRow(offered) << refused << QByteArray(elements);
        };
        row("sound video", 0, DOCUMENTED);
        row("text video sound", 1, DOCUMENTED);
        row("video sound otherSound", 0, DOCUMENTED);
        row("video text", 1, "glcolorconvert glupload uridecodebin videosink");
        row("sound", 0, "audiosink uridecodebin volume");
        row("video text planarSound", 2, "audioconverter " DOCUMENTED);
        row("text deepVideo", 2, "glcolorconvert glupload uridecodebin videoconverter videosink");
    }

    void streamsInEveryOrder()
    {
        QFETCH(int, refused);
        QFETCH(QByteArray, elements);
        Host host(Host::Widget);
        host.open({});
        host.setFileName(media("quadrants.webm") + '\0');
        QVERIFY(host.view()->loadFile());
        // What it would offer itself is replaced, before its item lets it preroll.
        GstElement *const source = host.view()->source, *const pipeline = host.view()->pipeline;
        gst_element_set_locked_state(source, true);
        gst_element_set_state(source, GST_STATE_NULL);

        QByteArray trace;
        {
            Captured captured(STDOUT_FILENO);
            storeRelaxed(enableDebug, 1);
            for (const QByteArray &name : QByteArray(QTest::currentDataTag()).split(' ')) {
                GstElement *const bin =
                    gst_parse_bin_from_description(streams[name], true, nullptr);
                gst_object_set_name(GST_OBJECT(bin), name.constData());
                gst_bin_add(GST_BIN(pipeline), bin);
                const ObjectRef<GstPad> pad(gst_element_get_static_pad(bin, "src"));
                pad_added_handler(bin, pad.get(), host.view());
                gst_element_sync_state_with_parent(bin);
            }
            no_more_pads_handler(source, host.view());
            storeRelaxed(enableDebug, 0);
            trace = captured.text();
        }
        QCOMPARE(trace.count("but link failed."), refused);
        QCOMPARE(elementsOf(pipeline), elements);
        AWAIT_EQUAL(host.pipelineStates().first(), int(GST_STATE_PAUSED));
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > GST_SECOND / 2);
        QCOMPARE(host.record.error, std::int8_t(0));
    }

    void aSoundDeviceIsNarrow()
    {
        const GType type = g_type_register_static_simple(
            GST_TYPE_BASE_SINK, "NarrowDevice", sizeof(GstBaseSinkClass), initNarrowDevice,
            sizeof(GstBaseSink), nullptr, GTypeFlags());
        Host host(Host::Widget);
        host.open({});
        QVERIFY(gst_element_register(nullptr, "narrowdevice", GST_RANK_PRIMARY + 1, type));
        QCOMPARE(host.load(media("tone.flac")), complete);
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > GST_SECOND / 2);
        QCOMPARE(host.record.error, std::int8_t(0));
        QCOMPARE(elementsOf(host.view()->pipeline), "audioconverter audiosink uridecodebin volume");
    }
};

PLAYER_TEST_MAIN(ChainTest)
#include "chain_test.moc"
