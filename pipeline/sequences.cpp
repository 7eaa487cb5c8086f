#include "pipeline/sequences.h"

#include "boundary/AtomicAccess.h"
#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "pipeline/Relay.h"

#include <utility>

namespace
{

/// NULL flushes the bus. Ends and changes of state go with the run that they belong to, but an
/// error is news of the media.
bool holdsError(GstElement *pipeline)
{
    const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline));
    GstMessage *const error = gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR);
    if (error)
        gst_message_unref(error);
    return error;
}

/// What is on its way from before is not news of the run that begins now.
void beginRun(MediaPlayerView &view)
{
    const Guard guard(view.lock);
    ++view.shared.generation;
    view.shared.firstOfRun = gst_util_seqnum_next();
    view.relay->beginRun();
}

} // namespace

Turn::Turn(MediaPlayerView &view) : m_view(view)
{
    view.sequence.acquire();
    m_cutsRewind = std::exchange(view.rewindCut, false);
}

Turn::~Turn()
{
    m_view.sequence.release();
}

// GStreamer climbs towards a number beyond its states for ever, with a warning a step. Asked for
// VOID_PENDING it takes the elements a state down and leaves the pipeline's own as it was.
bool isStateToGoTo(GstState state)
{
    return state >= GST_STATE_NULL && state <= GST_STATE_PLAYING;
}

GstStateChangeReturn setState(MediaPlayerView &view, GstState state, const GiveUp &giveUp)
{
    traceFormat("MediaPlayerView::gstElementSetState: %d\n", int(state));
    GstElement *const pipeline = loadAcquire(view.pipeline);
    if (!pipeline || !isStateToGoTo(state))
        return GST_STATE_CHANGE_FAILURE;
    Supply &supply = view.relay->supply;
    supply.held = state == GST_STATE_PLAYING && supply.isAwaited();
    if (supply.held)
        return GST_STATE_CHANGE_ASYNC; // the update thread has it play when there are data

    if (state == GST_STATE_NULL) {
        gst_element_set_state(pipeline, GST_STATE_READY); // ends the threads that may yet post one
        if (holdsError(pipeline)) {
            const Guard guard(view.lock);
            view.shared.flushedErrorOf = pipeline;
        }
    }
    GstStateChangeReturn result = Quirks::changeState(pipeline, loadRelaxed(view.videoSink), state);
    if (result != GST_STATE_CHANGE_FAILURE)
        result = awaitState(pipeline, state, giveUp);
    if (result == GST_STATE_CHANGE_ASYNC && !(giveUp && giveUp()))
        Quirks::prerollTimedOut(pipeline);
    if (state <= GST_STATE_READY)
        beginRun(view);
    return result;
}

bool run(MediaPlayerView &view, std::span<const GstState> states, const GiveUp &giveUp)
{
    for (const GstState state : states) {
        setState(view, state, giveUp);
        if (giveUp && giveUp())
            return false;
    }
    return true;
}
