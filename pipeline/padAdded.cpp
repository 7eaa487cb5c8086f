#include "pipeline/padAdded.h"

#include "boundary/AtomicAccess.h"
#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "pipeline/chain.h"
#include "view/MediaPlayerView.h"

void pad_added_handler(GstElement *, GstPad *newPad, MediaPlayerView *view)
{
    traceLine("pad_added_handler MP");
    GstElement *const pipeline = loadAcquire(view->pipeline);
    if (!pipeline)
        return;
    const Chain audio = audioChainOf(view);
    const Chain video = videoChainOf(view);
    traceGlib("Received new pad '%s' from '%s':\n", GST_PAD_NAME(newPad),
              GST_ELEMENT_NAME(pipeline));

    const CapsRef caps(gst_pad_query_caps(newPad, nullptr));
    const bool known = caps && gst_caps_get_size(caps.get()) > 0;
    const char *type = known ? gst_structure_get_name(gst_caps_get_structure(caps.get(), 0)) : "";
    traceGlib("  It has type '%s'.\n", type);

    const bool rawAudio = g_str_has_prefix(type, "audio/x-raw");
    if (!rawAudio && isFree(pipeline, video))
        linkStream(pipeline, video, newPad, type);
    else if (isFree(pipeline, audio))
        linkStream(pipeline, audio, newPad, type);
}

void no_more_pads_handler(GstElement *, MediaPlayerView *view)
{
    GstElement *const pipeline = loadAcquire(view->pipeline);
    if (!pipeline)
        return;
    leaveIfFree(pipeline, audioChainOf(view));
    leaveIfFree(pipeline, videoChainOf(view));
}
