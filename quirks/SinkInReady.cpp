#include "quirks/SinkInReady.h"

namespace
{

bool isInNull(GstElement *element)
{
    GST_OBJECT_LOCK(element);
    const bool inNull = GST_STATE(element) == GST_STATE_NULL;
    GST_OBJECT_UNLOCK(element);
    return inNull;
}

} // namespace

// To READY first: the pipeline leaves a locked sink in the state that it has.
GstStateChangeReturn toNullWithoutSink(GstElement *pipeline, GstElement *videoSink)
{
    gst_element_set_state(pipeline, GST_STATE_READY);
    if (!videoSink || isInNull(videoSink))
        return gst_element_set_state(pipeline, GST_STATE_NULL);
    const bool wasLocked = gst_element_is_locked_state(videoSink);
    gst_element_set_locked_state(videoSink, TRUE);
    const GstStateChangeReturn result = gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_element_set_locked_state(videoSink, wasLocked);
    return result;
}
