#include "pipeline/chain.h"

#include "boundary/AtomicAccess.h"
#include "diagnostics/Trace.h"
#include "pipeline/streamFilter.h"
#include "pipeline/videoFilter.h"
#include "view/MediaPlayerView.h"

namespace
{

/// Adds the elements that exist to the pipeline and links them. One that is there already stays,
/// with its links: a later preroll finds the chain built.
void addAndLink(GstElement *pipeline, const Chain &chain)
{
    GstElement *previous = nullptr;
    for (GstElement *element : chain.elements) {
        if (!element)
            continue;
        if (!GST_OBJECT_PARENT(element)) {
            gst_bin_add(GST_BIN(pipeline), element);
            gst_element_set_locked_state(element, false);
            if (previous)
                gst_element_link(previous, element);
        }
        previous = element;
    }
}

std::string audioFilterFor(const StreamFormat &stream)
{
    return stream.refused ? "audioconvert ! audioresample" : "";
}

} // namespace

Chain audioChainOf(MediaPlayerView *view)
{
    return {{loadRelaxed(view->volumeElement), loadRelaxed(view->audioSink)},
            "audio/x-raw",
            "audiofilter",
            "",
            audioFilterFor};
}

Chain videoChainOf(MediaPlayerView *view)
{
    return {{loadRelaxed(view->glUpload), loadRelaxed(view->glColorConvert),
             loadRelaxed(view->videoSink)},
            "video/x-raw",
            "videofilter",
            videoTurnerName,
            videoFilterFor};
}

bool isFree(GstElement *pipeline, const Chain &chain)
{
    const auto entry = entryOf(pipeline, chain);
    return entry && !gst_pad_is_linked(entry.get());
}

void linkStream(GstElement *pipeline, const Chain &chain, GstPad *stream, const char *type)
{
    takeFilterOutUnlessFor(stream, pipeline, chain);
    addAndLink(pipeline, chain);
    if (GST_PAD_LINK_FAILED(gst_pad_link(stream, entryOf(pipeline, chain).get())))
        traceGlib("  Type is '%s' but link failed.\n", type);
    // The sink first: an element that goes to READY asks those behind it for the scene's display
    // and GL context. Without an answer it opens a display of its own, whose pictures stay black.
    if (GstElement *const sink = chain.elements.back())
        gst_element_sync_state_with_parent(sink);
    if (g_str_has_prefix(type, chain.rawType))
        filterStream(pipeline, chain, stream);
    for (GstElement *element : chain.elements) {
        if (element)
            gst_element_sync_state_with_parent(element);
    }
}

void leaveIfFree(GstElement *pipeline, const Chain &chain)
{
    if (!isFree(pipeline, chain))
        return;
    takeFilterOut(pipeline, chain);
    for (GstElement *element : chain.elements) {
        if (element && GST_OBJECT_PARENT(element))
            takeOut(pipeline, element);
    }
}
