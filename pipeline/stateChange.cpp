#include "pipeline/stateChange.h"

#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"

namespace
{

constexpr GstClockTime pollTime = 10 * GST_MSECOND;
constexpr GstClockTime waitBudget = GST_SECOND;

} // namespace

StateNow stateNow(GstElement *element)
{
    GST_OBJECT_LOCK(element);
    const StateNow now {GST_STATE(element), GST_STATE_PENDING(element), GST_STATE_RETURN(element)};
    GST_OBJECT_UNLOCK(element);
    return now;
}

bool isAboveReady(GstElement *element)
{
    const StateNow now = stateNow(element);
    return now.current > GST_STATE_READY || now.pending > GST_STATE_READY;
}

bool isPrerolled(GstElement *element)
{
    const StateNow now = stateNow(element);
    return now.current > GST_STATE_READY && now.last != GST_STATE_CHANGE_ASYNC
        && now.last != GST_STATE_CHANGE_FAILURE;
}

GstStateChangeReturn awaitState(GstElement *element, GstState state, const GiveUp &giveUp)
{
    GstState current = GST_STATE_NULL;
    GstStateChangeReturn last = GST_STATE_CHANGE_ASYNC;
    GstClockTime waited = 0; // counts polls: one that returns early counts whole
    while (current != state && waited < waitBudget) {
        if (giveUp && giveUp())
            return last;
        waited += pollTime;
        last = gst_element_get_state(element, &current, nullptr, pollTime);
        if (last == GST_STATE_CHANGE_FAILURE)
            return last;
        if (last == GST_STATE_CHANGE_SUCCESS)
            break;
    }
    if (waited >= waitBudget)
        traceFormat("gstElementSetState: waited ~%u ms, giving up\n",
                    unsigned(waited / GST_MSECOND));
    return current == state ? GST_STATE_CHANGE_SUCCESS : last;
}

void awaitNull(GstElement *element)
{
    GstState current = GST_STATE_NULL;
    GstClockTime waited = 0;
    do {
        gst_element_get_state(element, &current, nullptr, pollTime);
        waited += pollTime;
    } while (current != GST_STATE_NULL && waited < waitBudget);
}

void takeToNull(GstElement *pipeline)
{
    gst_element_set_state(pipeline, GST_STATE_NULL);
    awaitNull(pipeline);
}

void emptyBus(GstElement *element)
{
    if (const ObjectRef<GstBus> bus {gst_element_get_bus(element)}) {
        gst_bus_set_flushing(bus.get(), true);
        gst_bus_set_flushing(bus.get(), false);
    }
}
