#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

namespace
{

constexpr GstClockTime pollTime = 10 * GST_MSECOND;
constexpr GstClockTime waitBudget = GST_SECOND;

// GStreamer climbs towards a number beyond its states for ever, with a warning a step. VOID_PENDING
// is one of its states, and asking for it changes nothing.
bool isState(GstState state)
{
    return state >= GST_STATE_VOID_PENDING && state <= GST_STATE_PLAYING;
}

} // namespace

bool MediaPlayerView::isAboveReady(GstElement *element)
{
    GST_OBJECT_LOCK(element);
    const bool above =
        GST_STATE(element) > GST_STATE_READY || GST_STATE_PENDING(element) > GST_STATE_READY;
    GST_OBJECT_UNLOCK(element);
    return above;
}

// Called when the change has been made, not before it: what was queried while it was being made is
// as old as what was queried before.
void MediaPlayerView::nextGeneration()
{
    std::atomic_ref(generation).fetch_add(1, std::memory_order_release);
}

// What a run that is over left on the bus, its end above all, must not act on the next run.
void MediaPlayerView::emptyBus(GstElement *element)
{
    if (const ObjectRef<GstBus> bus {gst_element_get_bus(element)}) {
        gst_bus_set_flushing(bus.get(), true);
        gst_bus_set_flushing(bus.get(), false);
    }
}

GstStateChangeReturn MediaPlayerView::gstElementSetState(GstState state)
{
    traceFormat("MediaPlayerView::gstElementSetState: %d\n", int(state));
    // One read: while the caller holds no lock, the pipeline may be replaced, not released.
    GstElement *const current = loadAcquire(pipeline);
    if (!current || !isState(state))
        return GST_STATE_CHANGE_FAILURE;

    const bool down = state == GST_STATE_NULL || state == GST_STATE_READY;
    const bool endsRun = state == GST_STATE_READY && isAboveReady(current);
    const GstStateChangeReturn result = changeState(current, state);
    if (result == GST_STATE_CHANGE_ASYNC)
        Quirks::prerollTimedOut(current);
    if (down)
        nextGeneration();
    if (endsRun)
        emptyBus(current);
    return result;
}

GstStateChangeReturn MediaPlayerView::changeState(GstElement *element, GstState state)
{
    if (Quirks::changeState(element, loadRelaxed(videoSink), state) == GST_STATE_CHANGE_FAILURE)
        return GST_STATE_CHANGE_FAILURE;

    GstState current = GST_STATE_NULL;
    GstStateChangeReturn last = GST_STATE_CHANGE_ASYNC;
    GstClockTime waited = 0;
    while (current != state && waited < waitBudget) {
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

// Changes down to NULL complete within the call that asks for them; the budget is for an element
// that breaks this rule, so that it cannot hold the GUI thread for ever.
void MediaPlayerView::awaitNull(GstElement *element)
{
    GstState current = GST_STATE_NULL;
    GstClockTime waited = 0;
    do {
        gst_element_get_state(element, &current, nullptr, pollTime);
        waited += pollTime;
    } while (current != GST_STATE_NULL && waited < waitBudget);
}

void MediaPlayerView::unrefPipe()
{
    storeRelease(pipelineActive, false);
    const std::lock_guard guard(lock);
    storeRelease(ending, true);
    if (!pipeline)
        return;
    gstElementSetState(GST_STATE_NULL);
    awaitNull(pipeline);
    releaseCurrent();
}

void MediaPlayerView::nulldownAndPauseOnGuiThread()
{
    if (ending)
        return;
    traceLine("MediaPlayerView::nulldownAndPauseOnGuiThread");
    const std::lock_guard guard(lock);
    if (!pipeline)
        return;
    gstElementSetState(GST_STATE_NULL);
    gstElementSetState(GST_STATE_PAUSED);
}
