#include "pipeline/load.h"

#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "pipeline/builtPipelines.h"
#include "pipeline/mediaKind.h"
#include "pipeline/messageWatch.h"
#include "pipeline/padAdded.h"
#include "pipeline/sequences.h"
#include "pipeline/surface.h"

namespace
{

using PipelineCtx = MediaPlayerView::PipelineCtx;

constexpr int bufferBytes = 10 * 1024 * 1024;

constexpr QLatin1String textLoading("Loading media ...");
constexpr QLatin1String textNoMedia("no media");
constexpr QLatin1String textUnsupported("unsupported media");
constexpr QLatin1String textKeepLast("unsupported media\nkeep last file");

GlibText uriOf(GstElement *source)
{
    char *uri = nullptr;
    if (source)
        g_object_get(source, "uri", &uri, nullptr);
    return GlibText(uri);
}

/// A chain element, owned by the built pipeline whether or not it is ever added to it.
GstElement *makeChainElement(const char *factory, const char *name)
{
    GstElement *element = gst_element_factory_make(factory, name);
    return element ? GST_ELEMENT(gst_object_ref_sink(element)) : nullptr;
}

GstElement *makeSink(const char *factory, const char *name)
{
    GstElement *sink = makeChainElement(factory, name);
    if (sink)
        g_object_set(sink, "sync", TRUE, nullptr);
    return sink;
}

GstElement *makeSource(const QByteArray &uri)
{
    GstElement *source = gst_element_factory_make("uridecodebin", "uridecodebin");
    if (source)
        g_object_set(source, "uri", uri.constData(), "use-buffering", TRUE, "buffer-size",
                     bufferBytes, nullptr);
    return source;
}

/// A build that comes to nothing: its source has not been given to its pipeline yet.
void abandon(PipelineCtx &built)
{
    gst_object_unref(gst_object_ref_sink(built.source));
    release(built);
}

bool refuseUnsupported(MediaPlayerView &view)
{
    if (view.source) {
        view.showOverlay(textKeepLast);
        if (const GlibText uri = uriOf(view.source))
            Record(view.params).writeBackFileName(uri.get());
    } else {
        view.showOverlay(textUnsupported);
    }
    const Turn turn(view);
    storeRelease(view.pipelineActive, true);
    setState(view, GST_STATE_PAUSED);
    return false;
}

bool loadCached(MediaPlayerView &view, const PipelineCtx &built)
{
    traceLine("MP: found entry in map");
    // A picture that has never been shown cannot take frames before its item can.
    const bool awaitsItem = built.videoSink && !built.prerolled && !view.quirks.isItemInitialized();
    // A window draws some milliseconds after it has been asked to. Asked now, it draws the first
    // frame as soon as the wait for it is over. One that the host draws itself may do so in here.
    const QPointer<MediaPlayerView> self(&view);
    if (built.videoItem)
        built.videoItem->update();
    if (!self)
        return false;
    const Turn turn(view);
    retireCurrent(view);
    makeCurrent(view, built);
    if (awaitsItem) {
        const Guard guard(view.lock);
        view.shared.awaitsItem = true;
        view.relay->setErrorsIgnored(true);
    }
    setState(view, GST_STATE_PAUSED);
    view.hideOverlay();
    storeRelease(view.pipelineActive, true);
    traceLine("MP: done");
    if (built.videoSink && !built.prerolled)
        prerollOnceInitialized(view);
    return true;
}

void makeElements(MediaPlayerView &view, PipelineCtx &built, MediaKind kind)
{
    if (kind == MediaKind::Video) {
        traceLine("MP: video");
        built.isVideo = true;
        built.glUpload = makeChainElement("glupload", "glupload");
        built.glColorConvert = makeChainElement("glcolorconvert", "glcolorconvert");
        built.videoSink = makeSink("qml6glsink", "videosink");
    } else {
        traceLine("MP: pure audio");
    }
    built.volumeElement = makeChainElement("volume", "volume");
    built.audioSink = makeSink("autoaudiosink", "audiosink");
    gst_bin_add(GST_BIN(built.pipeline), built.source);
    if (built.isVideo)
        bindVideoItem(view, built);
    g_signal_connect(built.source, "pad-added", G_CALLBACK(pad_added_handler), &view);
    g_signal_connect(built.source, "no-more-pads", G_CALLBACK(no_more_pads_handler), &view);
}

bool buildNew(MediaPlayerView &view, const QByteArray &uri, const QString &key)
{
    traceLine("MP: Create new pipeline");
    const auto built = QSharedPointer<PipelineCtx>::create();
    built->pipeline = GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr)));
    built->source = makeSource(uri);
    if (!built->source) {
        release(*built);
        view.relay->refuse(
            QStringLiteral("Not installed: uridecodebin, of GStreamer's base plug-ins."));
        return false;
    }
    const MediaKind kind = mediaKindOf(key);
    if (kind == MediaKind::Unsupported) {
        abandon(*built);
        view.relay->refuse(
            QStringLiteral("The name's extension stands for no video or sound: %1").arg(key));
        return refuseUnsupported(view);
    }
    if (namesWhatCanBlock(uri.constData())) {
        abandon(*built);
        view.showOverlay(textNoMedia);
        view.relay->refuse(QStringLiteral("Neither a file nor a folder: %1").arg(key));
        return false;
    }
    watchMessages(built->pipeline, view.relay);
    makeElements(view, *built, kind);
    Quirks::pipelineBuilt(built->source, uri.constData());

    const Turn turn(view);
    retireCurrent(view);
    makeCurrent(view, *built);
    view.pipelineCache.insert(key, built);
    setState(view, GST_STATE_READY);
    storeRelease(view.pipelineActive, true);
    if (!built->isVideo) {
        setState(view, GST_STATE_PAUSED);
        MediaPlayerView::librariesLoaded();
    }
    return true;
}

} // namespace

bool load(MediaPlayerView &view)
{
    view.showOverlay(textLoading);
    if (!view.pipeline)
        view.gstInit(nullptr, nullptr);

    const QByteArray uri = Record(view.params).fileName();
    if (!gst_uri_is_valid(uri.constData())) {
        view.showOverlay(textNoMedia);
        view.relay->refuse(uri.isEmpty()
                               ? QStringLiteral("No media is named.")
                               : QStringLiteral("Not a URI: %1").arg(QString::fromUtf8(uri)));
        return false;
    }
    const GlibText currentUri = uriOf(view.source);
    if (currentUri && uri == currentUri.get()) {
        view.hideOverlay();
        view.relay->accept();
        traceLine("MP: Skip same filename");
        return true;
    }
    const QString key = QString::fromUtf8(uri);
    traceFormat("MP: search map for %s\n", uri.constData());
    if (const auto built = view.pipelineCache.value(key))
        return loadCached(view, *built);
    return buildNew(view, uri, key);
}
