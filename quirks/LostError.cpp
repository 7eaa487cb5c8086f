#include "quirks/LostError.h"

#include "pipeline/GstHandle.h"

namespace
{

/// A demuxer that stopped pulling without having created a source pad.
bool hasGivenUp(GstElement *element)
{
    const ObjectRef<GstPad> entry(gst_element_get_static_pad(element, "sink"));
    if (!entry)
        return false;
    GST_OBJECT_LOCK(element);
    const bool findsNothing = element->numsrcpads == 0 && GST_STATE(element) == GST_STATE_PAUSED;
    GST_OBJECT_UNLOCK(element);
    GST_OBJECT_LOCK(entry.get());
    GstTask *const task = GST_PAD_TASK(entry.get());
    const bool rests = task && GST_TASK_STATE(task) == GST_TASK_PAUSED;
    GST_OBJECT_UNLOCK(entry.get());
    return findsNothing && rests;
}

int compare(gconstpointer candidate, gconstpointer)
{
    const auto *value = static_cast<const GValue *>(candidate);
    return hasGivenUp(GST_ELEMENT(g_value_get_object(value))) ? 0 : 1;
}

} // namespace

void postLostError(GstElement *pipeline)
{
    GstIterator *const elements = gst_bin_iterate_recurse(GST_BIN(pipeline));
    GValue found = G_VALUE_INIT;
    if (gst_iterator_find_custom(elements, compare, &found, nullptr)) {
        g_value_unset(&found);
        GST_ELEMENT_ERROR(pipeline, STREAM, DEMUX, (nullptr), (nullptr));
    }
    gst_iterator_free(elements);
}
