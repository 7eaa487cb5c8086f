#include "quirks/SinkFirst.h"

void raiseSinkFirst(GstElement *sink)
{
    if (GST_STATE(sink) == GST_STATE_NULL)
        gst_element_set_state(sink, GST_STATE_READY);
}
