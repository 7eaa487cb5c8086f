#include "pipeline/chain.h"

#include "boundary/AtomicAccess.h"
#include "diagnostics/Trace.h"
#include "pipeline/streamFilter.h"
#include "view/MediaPlayerView.h"

namespace
{

/// Puts the elements that exist into the pipeline and joins them. One that is there already stays,
/// with its links: a later preroll finds the chain built.
void join(GstElement *pipeline, const Chain &chain)
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

const char *audioFilterFor(const StreamFormat &stream)
{
    return stream.refused ? "audioconvert ! audioresample" : nullptr;
}

// The picture is turned before anything else is done to it: videoflip takes nearly every format
// that decoders have, and one that it does not take is converted for it.
const char *videoFilterFor(const StreamFormat &stream)
{
    if (!stream.turned)
        return stream.refused ? "videoconvert" : nullptr;
    const GstCapsFeatures *const memory = gst_caps_get_features(stream.format, 0);
    return gst_caps_features_is_equal(memory, GST_CAPS_FEATURES_MEMORY_SYSTEM_MEMORY)
        ? "videoconvert ! videoflip name=videoturner ! videoconvert"
        : "glupload ! glcolorconvert ! glvideoflip name=videoturner";
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
            "videoturner",
            videoFilterFor};
}

bool isFree(GstElement *pipeline, const Chain &chain)
{
    const auto entry = entryOf(pipeline, chain);
    return entry && !gst_pad_is_linked(entry.get());
}

void linkStream(GstElement *pipeline, const Chain &chain, GstPad *stream, const char *type)
{
    takeFilterOut(pipeline, chain);
    join(pipeline, chain);
    if (GST_PAD_LINK_FAILED(gst_pad_link(stream, entryOf(pipeline, chain).get())))
        traceGlib("  Type is '%s' but link failed.\n", type);
    Quirks::chainJoined(chain.elements.back());
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
