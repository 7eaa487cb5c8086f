#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "pipeline/padAdded.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"
#include "view/liveViews.h"
#include "view/scene.h"

#include <QtCore/QMimeDatabase>

#include <sys/stat.h>

#include <cstring>

namespace
{

constexpr int bufferBytes = 10 * 1024 * 1024;

constexpr QLatin1String textLoading("Loading media ...");
constexpr QLatin1String textNoMedia("no media");
constexpr QLatin1String textUnsupported("unsupported media");
constexpr QLatin1String textKeepLast("unsupported media\nkeep last file");

enum class Kind { Video, Audio, Unsupported };

/// From the name alone: the database is asked about a URI, never about an existing path.
Kind kindOf(const QString &uri)
{
    const QString type = QMimeDatabase().mimeTypeForFile(uri).name();
    if (type.startsWith(QLatin1String("video"), Qt::CaseInsensitive))
        return Kind::Video;
    if (type.startsWith(QLatin1String("audio"), Qt::CaseInsensitive))
        return Kind::Audio;
    return Kind::Unsupported;
}

/// A FIFO blocks whoever opens it until somebody writes, so it must never get into a pipeline.
/// What does not exist is left to the pipeline, which reports it.
bool namesSomethingElseThanAFile(const char *uri)
{
    const GlibText path(g_filename_from_uri(uri, nullptr, nullptr));
    struct stat status;
    return path && stat(path.get(), &status) == 0 && !S_ISREG(status.st_mode);
}

/// The record's text. One without a NUL in its field has no end, and is no text.
QByteArray fileNameOf(const MediaPlayerParams &params)
{
    const std::size_t length = strnlen(params.fileName, sizeof params.fileName);
    return length < sizeof params.fileName ? QByteArray(params.fileName, qsizetype(length))
                                           : QByteArray();
}

GlibText uriOf(GstElement *source)
{
    char *uri = nullptr;
    if (source)
        g_object_get(source, "uri", &uri, nullptr);
    return GlibText(uri);
}

/// A chain element, owned by the record from now on whether or not it joins the pipeline.
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

void makeVideoChain(MediaPlayerView::PipelineCtx &record)
{
    record.glUpload = makeChainElement("glupload", "glupload");
    record.glColorConvert = makeChainElement("glcolorconvert", "glcolorconvert");
    record.videoSink = makeSink("qml6glsink", "videosink");
}

void makeAudioChain(MediaPlayerView::PipelineCtx &record)
{
    record.volumeElement = makeChainElement("volume", "volume");
    record.audioSink = makeSink("autoaudiosink", "audiosink");
}

bool makeSource(MediaPlayerView::PipelineCtx &record, const QByteArray &uri)
{
    record.source = gst_element_factory_make("uridecodebin", "uridecodebin");
    if (!record.source)
        return false;
    g_object_set(record.source, "uri", uri.constData(), "use-buffering", TRUE, "buffer-size",
                 bufferBytes, nullptr);
    return true;
}

} // namespace

bool MediaPlayerView::loadFile()
{
    if (ending || !params)
        return false;
    traceLine("MediaPlayerView::loadFile");
    showOverlay(textLoading);
    if (!pipeline)
        gstInit(nullptr, nullptr);

    const QByteArray uri = fileNameOf(*params);
    if (!gst_uri_is_valid(uri.constData())) {
        showOverlay(textNoMedia);
        return false;
    }
    const QString key = QString::fromUtf8(uri);
    const GlibText currentUri = uriOf(source);
    if (currentUri && uri == currentUri.get()) {
        hideOverlay();
        traceLine("MP: Skip same filename");
        return true;
    }
    traceFormat("MP: search map for %s\n", uri.constData());
    if (const auto record = pipelineCache.value(key)) {
        loadCached(*record);
        return true;
    }
    traceLine("MP: Create new pipeline");
    return buildNew(uri, key);
}

// A video that another file followed before its item could take frames is still to be prerolled as
// a new one is.
void MediaPlayerView::loadCached(const PipelineCtx &record)
{
    traceLine("MP: found entry in map");
    const bool likeNew = record.videoSink && record.videoItem && !record.prerolled;
    if (likeNew)
        prerollOnceInitialized(record.videoItem);
    const std::lock_guard guard(lock);
    retireCurrent();
    makeCurrent(record);
    gstElementSetState(likeNew ? GST_STATE_READY : GST_STATE_PAUSED);
    if (!likeNew)
        hideOverlay();
    storeRelease(pipelineActive, true);
    traceLine("MP: done");
}

bool MediaPlayerView::buildNew(const QByteArray &uri, const QString &key)
{
    auto record = QSharedPointer<PipelineCtx>::create();
    record->pipeline = GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr)));
    if (!makeSource(*record, uri)) {
        releaseRecord(*record);
        return false;
    }
    const Kind kind = kindOf(key);
    if (kind != Kind::Unsupported && namesSomethingElseThanAFile(uri.constData())) {
        abandon(*record);
        showOverlay(textNoMedia);
        return false;
    }
    switch (kind) {
    case Kind::Video:
        traceLine("MP: video");
        record->isVideo = true;
        makeVideoChain(*record);
        break;
    case Kind::Audio:
        traceLine("MP: pure audio");
        break;
    case Kind::Unsupported:
        abandon(*record);
        refuseUnsupported();
        return false;
    }
    makeAudioChain(*record);
    gst_bin_add(GST_BIN(record->pipeline), record->source);
    if (record->isVideo)
        bindVideoItem(*record);
    Quirks::pipelineBuilt(record->source, uri.constData());
    g_signal_connect(record->source, "pad-added", G_CALLBACK(pad_added_handler), this);
    g_signal_connect(record->source, "no-more-pads", G_CALLBACK(no_more_pads_handler), this);

    const std::lock_guard guard(lock);
    retireCurrent();
    makeCurrent(*record);
    pipelineCache.insert(key, record);
    gstElementSetState(GST_STATE_READY);
    storeRelease(pipelineActive, true);
    if (!record->isVideo) {
        gstElementSetState(GST_STATE_PAUSED);
        silenceViewsAtExit();
    }
    return true;
}

// The record's source has not been given to its pipeline yet.
void MediaPlayerView::abandon(PipelineCtx &record)
{
    gst_object_unref(gst_object_ref_sink(record.source));
    releaseRecord(record);
}

// A new pipeline stays in READY until the item can take frames; videoItemReady() prerolls it.
void MediaPlayerView::prerollOnceInitialized(const QQuickItem *item)
{
    if (item->property("itemInitialized").toBool())
        QMetaObject::invokeMethod(this, "videoItemReady", Qt::QueuedConnection);
}

void MediaPlayerView::bindVideoItem(PipelineCtx &record)
{
    if (videoObject)
        record.videoItem = findVideoItem(videoObject);
    QQuickItem *const item = record.videoItem;
    if (!record.videoSink || !item)
        return;
    connect(item, SIGNAL(itemInitializedChanged()), this, SLOT(videoItemReady()),
            Qt::UniqueConnection);
    prerollOnceInitialized(item);
    g_object_set(record.videoSink, "widget", item, "force-aspect-ratio", FALSE, nullptr);
}

void MediaPlayerView::refuseUnsupported()
{
    if (!source) {
        showOverlay(textUnsupported);
    } else {
        showOverlay(textKeepLast);
        if (const GlibText uri = uriOf(source))
            g_strlcpy(params->fileName, uri.get(), sizeof params->fileName);
    }
    const std::lock_guard guard(lock);
    storeRelease(pipelineActive, true);
    gstElementSetState(GST_STATE_PAUSED);
}
