#include "pipeline/padAdded.h"

#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

#include <initializer_list>

namespace
{

ObjectRef<GstPad> entryOf(GstElement *element)
{
    return ObjectRef<GstPad>(element ? gst_element_get_static_pad(element, "sink") : nullptr);
}

bool isFree(const ObjectRef<GstPad> &entry)
{
    return entry && !gst_pad_is_linked(entry.get());
}

/// Puts the elements that exist into the pipeline, joins them, and gives the stream to the first.
/// An element that is there already stays, with its links: a later preroll finds the chain built.
void linkChain(GstElement *pipeline, std::initializer_list<GstElement *> chain, GstPad *entry,
               GstPad *stream, const char *type)
{
    GstElement *previous = nullptr;
    for (GstElement *element : chain) {
        if (!element)
            continue;
        if (!GST_OBJECT_PARENT(element)) {
            gst_bin_add(GST_BIN(pipeline), element);
            if (previous)
                gst_element_link(previous, element);
        }
        previous = element;
    }
    if (GST_PAD_LINK_FAILED(gst_pad_link(stream, entry)))
        traceGlib("  Type is '%s' but link failed.\n", type);
    for (GstElement *element : chain) {
        if (element)
            gst_element_sync_state_with_parent(element);
    }
}

} // namespace

void pad_added_handler(GstElement *, GstPad *newPad, MediaPlayerView *view)
{
    traceLine("pad_added_handler MP");
    GstElement *const pipeline = loadAcquire(view->pipeline);
    if (!pipeline)
        return;
    GstElement *const volume = loadRelaxed(view->volumeElement);
    GstElement *const upload = loadRelaxed(view->glUpload);
    const auto audioEntry = entryOf(volume);
    const auto videoEntry = entryOf(upload);
    traceGlib("Received new pad '%s' from '%s':\n", GST_PAD_NAME(newPad),
              GST_ELEMENT_NAME(pipeline));

    const CapsRef caps(gst_pad_query_caps(newPad, nullptr));
    const bool known = caps && gst_caps_get_size(caps.get()) > 0;
    const char *type = known ? gst_structure_get_name(gst_caps_get_structure(caps.get(), 0)) : "";
    traceGlib("  It has type '%s'.\n", type);

    const bool rawAudio = g_str_has_prefix(type, "audio/x-raw");
    if (!rawAudio && isFree(videoEntry)) {
        linkChain(pipeline,
                  {upload, loadRelaxed(view->glColorConvert), loadRelaxed(view->videoSink)},
                  videoEntry.get(), newPad, type);
    } else if (isFree(audioEntry)) {
        linkChain(pipeline, {volume, loadRelaxed(view->audioSink)}, audioEntry.get(), newPad, type);
    }
}
