#include "pipeline/builtPipelines.h"

#include "boundary/AtomicAccess.h"
#include "pipeline/GstHandle.h"
#include "pipeline/Relay.h"
#include "pipeline/sequences.h"

namespace
{

bool isFromNetwork(GstElement *source)
{
    char *uri = nullptr;
    if (source)
        g_object_get(source, "uri", &uri, nullptr);
    const GlibText owned(uri);
    return uri && !gst_uri_has_protocol(uri, "file");
}

} // namespace

void retireCurrent(MediaPlayerView &view)
{
    GstElement *const outgoing = view.pipeline;
    if (!outgoing)
        return;
    if (setState(view, GST_STATE_READY) != GST_STATE_CHANGE_SUCCESS)
        Quirks::changeState(outgoing, view.videoSink, GST_STATE_NULL);
    emptyBus(outgoing);
}

void makeCurrent(MediaPlayerView &view, const MediaPlayerView::PipelineCtx &built)
{
    assertGuiThread();
    const bool fromNetwork = isFromNetwork(built.source);
    const Guard guard(view.lock);
    ++view.shared.generation;
    view.shared.awaitsItem = false;
    view.shared.flushedErrorOf = nullptr;
    view.relay->follow(built.pipeline, fromNetwork);
    storeRelaxed(view.source, built.source);
    storeRelaxed(view.videoSink, built.videoSink);
    storeRelaxed(view.glUpload, built.glUpload);
    storeRelaxed(view.glColorConvert, built.glColorConvert);
    storeRelaxed(view.audioSink, built.audioSink);
    storeRelaxed(view.volumeElement, built.volumeElement);
    view.videoItem = built.videoItem;
    storeRelease(view.pipeline, built.pipeline);
}

void release(MediaPlayerView::PipelineCtx &built)
{
    if (built.pipeline) {
        takeToNull(built.pipeline);
        gst_object_unref(built.pipeline);
    }
    for (GstElement *element : {built.videoSink, built.glUpload, built.glColorConvert,
                                built.audioSink, built.volumeElement}) {
        if (element)
            gst_object_unref(element);
    }
    built = MediaPlayerView::PipelineCtx();
}

void releaseCurrent(MediaPlayerView &view)
{
    GstElement *const outgoing = view.pipeline;
    makeCurrent(view, MediaPlayerView::PipelineCtx());
    for (auto entry = view.pipelineCache.begin(); entry != view.pipelineCache.end(); ++entry) {
        if (entry.value()->pipeline == outgoing) {
            release(*entry.value());
            view.pipelineCache.erase(entry);
            return;
        }
    }
    gst_object_unref(outgoing); // one that a host has put into the member itself
}

void releaseAll(MediaPlayerView &view)
{
    for (const auto &built : std::as_const(view.pipelineCache))
        release(*built);
    view.pipelineCache.clear();
}
