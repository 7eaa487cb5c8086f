#include "pipeline/GstHandle.h"
#include "pipeline/padAdded.h"
#include "tests/fixture.h"

#include <gst/base/gstbasesink.h>

// Streams of a made-up decoder, offered in every order, and what becomes of the pipeline.

namespace
{

#define VIDEO "capsfilter caps=video/x-raw,framerate=30/1,width=64,height=48,format="
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
GType narrowDevice()
{
    const auto init = [](gpointer type, gpointer) {
        static GstStaticPadTemplate entry = GST_STATIC_PAD_TEMPLATE(
            "sink", GST_PAD_SINK, GST_PAD_ALWAYS,
            GST_STATIC_CAPS("audio/x-raw,format=S16LE,rate=48000,layout=interleaved"));
        gst_element_class_add_static_pad_template(GST_ELEMENT_CLASS(type), &entry);
        gst_element_class_set_static_metadata(GST_ELEMENT_CLASS(type), "n", "Sink/Audio", "n", "n");
    };
    return g_type_register_static_simple(GST_TYPE_BASE_SINK, "NarrowDevice",
                                         sizeof(GstBaseSinkClass), init, sizeof(GstBaseSink),
                                         nullptr, GTypeFlags());
}

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

QByteArray failuresIn(const QByteArray &trace)
{
    QByteArrayList types;
    for (const QByteArray &line : trace.split('\n')) {
        if (line.endsWith("but link failed."))
            types += line.split('\'').at(1);
    }
    return types.join(' ');
}

constexpr char documented[] = "audiosink glcolorconvert glupload videosink volume";

} // namespace

class ChainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { enableDebug = 0; }
    void init();
    void cleanup();
    void orders_data();
    void orders();
    void formatChanges_data();
    void formatChanges();
    void narrowSoundDevice();

private:
    void prerolled();
    GstElement *pipeline() { return host->view()->pipeline; }

    /// Takes what was offered before away and offers these; returns the types that were refused.
    QByteArray offer(const QByteArray &names);

    ObjectRef<GstElement> source;
    std::unique_ptr<Host> host;
};

// A pipeline in READY that has lost its own source.
void ChainTest::init()
{
    host = std::make_unique<Host>(Host::Widget);
    host->open({});
    host->setFileName(media("quadrants.webm") + '\0');
    QVERIFY(host->view()->loadFile());
    source.reset(GST_ELEMENT(gst_object_ref(host->view()->source)));
    gst_bin_remove(GST_BIN(pipeline()), source.get());
    gst_element_set_state(source.get(), GST_STATE_NULL);
}

void ChainTest::cleanup()
{
    host.reset();
    source.reset();
}

QByteArray ChainTest::offer(const QByteArray &names)
{
    for (auto stream = streams.keyBegin(); stream != streams.keyEnd(); ++stream) {
        if (const ObjectRef<GstElement> old {
                gst_bin_get_by_name(GST_BIN(pipeline()), stream->constData())}) {
            gst_bin_remove(GST_BIN(pipeline()), old.get());
            gst_element_set_state(old.get(), GST_STATE_NULL);
        }
    }
    storeRelaxed(enableDebug, 1);
    Captured trace(STDOUT_FILENO);
    for (const QByteArray &name : names.split(' ')) {
        GstElement *bin = gst_parse_bin_from_description(streams[name], true, nullptr);
        gst_object_set_name(GST_OBJECT(bin), name.constData());
        gst_bin_add(GST_BIN(pipeline()), bin);
        const ObjectRef<GstPad> pad(gst_element_get_static_pad(bin, "src"));
        pad_added_handler(bin, pad.get(), host->view());
        gst_element_sync_state_with_parent(bin);
    }
    no_more_pads_handler(source.get(), host->view());
    storeRelaxed(enableDebug, 0);
    const QByteArray said = trace.text();
    if (qEnvironmentVariableIsSet("SHOW"))
        fprintf(stderr, "%s", said.constData());
    return failuresIn(said);
}

// The player prerolls a new pipeline once its item is ready.
void ChainTest::prerolled()
{
    AWAIT_EQUAL(host->overlay(), QString());
    AWAIT_EQUAL(host->pipelineStates(), QList<int> {GST_STATE_PAUSED});
}

void ChainTest::orders_data()
{
    QTest::addColumn<QByteArray>("refused");
    QTest::addColumn<QByteArray>("elements");
    const auto row = [](const char *offered, const char *refused, const char *elements) {
        QTest::newRow(offered) << QByteArray(refused) << QByteArray(elements);
    };
    row("sound video", "", documented);
    row("video text sound", "text/x-raw", documented);
    row("text video sound", "text/x-raw", documented);
    row("video sound otherSound", "", documented);
    row("video text", "text/x-raw", "glcolorconvert glupload videosink");
    row("sound", "", "audiosink volume");
    row("video text planarSound", "text/x-raw audio/x-raw",
        "audioconverter audiosink glcolorconvert glupload videosink volume");
    row("text deepVideo", "text/x-raw video/x-raw",
        "glcolorconvert glupload videoconverter videosink");
}

void ChainTest::orders()
{
    QFETCH(QByteArray, refused);
    QFETCH(QByteArray, elements);
    QCOMPARE(offer(QTest::currentDataTag()), refused);
    QCOMPARE(elementsOf(pipeline()), elements);
    prerolled();

    QCOMPARE(host->view()->gstElementSetState(GST_STATE_READY), GST_STATE_CHANGE_SUCCESS);
    QCOMPARE(offer("video sound"), QByteArray());
    QCOMPARE(elementsOf(pipeline()), QByteArray(documented));
    host->view()->gstElementSetState(GST_STATE_PLAYING);
    AWAIT_EQUAL(host->pipelineStates(), QList<int> {GST_STATE_PLAYING});
    AWAIT(host->position() > 0);
}

void ChainTest::formatChanges_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("converter");
    QTest::newRow("sound") << QByteArray(
        "audio/x-raw,format=U8,layout=interleaved,channels=1,rate=44100")
                           << QByteArray("audioconverter");
}

// As a decoder changes it: without asking. The bytes that flow fit either format.
void ChainTest::formatChanges()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, converter);
    QCOMPARE(offer("video sound"), QByteArray());
    prerolled();
    host->view()->gstElementSetState(GST_STATE_PLAYING);
    AWAIT_EQUAL(host->pipelineStates(), QList<int> {GST_STATE_PLAYING});
    const ObjectRef<GstElement> bin(
        gst_bin_get_by_name(GST_BIN(pipeline()), QTest::currentDataTag()));
    const ObjectRef<GstPad> shown(gst_element_get_static_pad(bin.get(), "src"));
    const ObjectRef<GstPad> origin(gst_ghost_pad_get_target(GST_GHOST_PAD(shown.get())));
    const CapsRef caps(gst_caps_from_string(format.constData()));
    QVERIFY(gst_pad_push_event(origin.get(), gst_event_new_caps(caps.get())));
    QVERIFY(elementsOf(pipeline()).contains(converter));
    const qint64 before = host->position();
    AWAIT(host->position() > before + GST_SECOND);
    QCOMPARE(host->record.error, std::int8_t(0));
}

void ChainTest::narrowSoundDevice()
{
    QVERIFY(gst_element_register(nullptr, "narrowdevice", GST_RANK_PRIMARY + 1, narrowDevice()));
    QCOMPARE(host->load(media("tone.flac")), complete);
    AWAIT_EQUAL(host->pipelineStates().first(), int(GST_STATE_PAUSED));
    QCOMPARE(host->play(GST_STATE_PLAYING), complete);
    AWAIT(host->position() > 0);
    QVERIFY(elementsOf(pipeline()).startsWith("audioconverter audiosink"));
    QCOMPARE(host->record.error, std::int8_t(0));
}

PLAYER_TEST_MAIN(ChainTest)
#include "chain_test.moc"
