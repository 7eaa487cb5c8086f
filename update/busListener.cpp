#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

#include <poll.h>

#include <chrono>
#include <cstring>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

// How long the listener waits for a message that matters before it publishes.
constexpr std::chrono::milliseconds quietTime {100};

constexpr auto handledMessages = GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR
                                                | GST_MESSAGE_STATE_CHANGED | GST_MESSAGE_ELEMENT);

constexpr char pipelineNamePrefix[] = "pipeline";

/// Whether the bus has something before `deadline`. Holds no lock.
bool waitForBus(GstBus *bus, Clock::time_point deadline)
{
    GPollFD descriptor;
    gst_bus_get_pollfd(bus, &descriptor);
    pollfd entry {descriptor.fd, POLLIN, 0};
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return left.count() > 0 && poll(&entry, 1, int(left.count())) > 0;
}

GstState recordedState(GstElement *element)
{
    GST_OBJECT_LOCK(element);
    const GstState state = GST_STATE(element);
    GST_OBJECT_UNLOCK(element);
    return state;
}

/// Whether the sink's stream is at its end. A sink without a stream has nothing that could go on.
bool hasEnded(GstElement *sink)
{
    const ObjectRef<GstPad> entry(sink ? gst_element_get_static_pad(sink, "sink") : nullptr);
    return !entry || !gst_pad_is_linked(entry.get()) || GST_PAD_IS_EOS(entry.get());
}

} // namespace

bool MediaPlayerView::listensTo(const GstElement *candidate)
{
    return candidate && candidate == pipeline && loadAcquire(pipelineActive)
        && !loadRelaxed(rebindPending) && !loadRelaxed(ending);
}

void MediaPlayerView::busListenerFunction()
{
    if (!loadAcquire(pipelineActive) || loadRelaxed(rebindPending))
        return;

    // References of its own, so that neither goes while the listener waits or queries.
    ObjectRef<GstElement> current;
    {
        const std::lock_guard guard(lock);
        if (!listensTo(pipeline))
            return;
        current.reset(GST_ELEMENT(gst_object_ref(pipeline)));
    }
    if (drainBus(current.get()))
        publish(current.get());
}

bool MediaPlayerView::drainBus(GstElement *current)
{
    const ObjectRef<GstBus> bus(gst_element_get_bus(current));
    if (!bus)
        return true;
    auto deadline = Clock::now() + quietTime;
    while (waitForBus(bus.get(), deadline)) {
        const std::lock_guard guard(lock);
        // A message that a command has overtaken must not act on what came after it.
        if (!listensTo(current))
            return false;
        if (loadAcquire(commandRunning))
            return true;
        if (GstMessage *message = gst_bus_pop_filtered(bus.get(), handledMessages)) {
            handle_message(message);
            deadline = Clock::now() + quietTime;
        }
    }
    return true;
}

// Nothing on a message tells the end that a seek has overtaken from the end of the run that the
// seek began, but the sinks forget theirs when they are flushed.
void MediaPlayerView::dropOvertakenEnd()
{
    if (hasEnded(videoSink) && hasEnded(audioSink))
        return;
    const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline));
    std::vector<GstMessage *> kept;
    while (GstMessage *message = gst_bus_pop_filtered(bus.get(), handledMessages)) {
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS)
            gst_message_unref(message);
        else
            kept.push_back(message);
    }
    for (GstMessage *message : kept)
        gst_bus_post(bus.get(), message);
}

void MediaPlayerView::publish(GstElement *current)
{
    // A source can hold a query up, so the queries run without the lock, and their answers count
    // only if nothing has moved the media meanwhile.
    const std::uint32_t before = loadAcquire(generation);
    gint64 position = 0;
    gint64 duration = 0;
    const bool positionKnown = gst_element_query_position(current, GST_FORMAT_TIME, &position);
    if (!gst_element_query_duration(current, GST_FORMAT_TIME, &duration))
        duration = 0;

    const std::lock_guard guard(lock);
    MediaPlayerParams *const block = loadAcquire(params);
    if (!block || !listensTo(current))
        return;
    // `execute` first: once it reads 0, the command's work and its number are both in the past.
    const bool executing = loadAcquire(block->execute) != 0;
    const std::int32_t command = loadRelaxed(block->command);
    if (!(executing && command == MediaPlayerCommandPlayState))
        storeRelaxed(block->state, std::int32_t(recordedState(current)));
    if (loadRelaxed(generation) != before)
        return;
    if (positionKnown && !(executing && command == MediaPlayerCommandSeek))
        storeRelaxed(block->position, position);
    storeRelaxed(block->duration, duration);
}

void MediaPlayerView::handle_message(GstMessage *message)
{
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
        handleError();
        break;
    case GST_MESSAGE_EOS:
        handleEndOfStream();
        break;
    case GST_MESSAGE_STATE_CHANGED:
        handleStateChanged(message);
        break;
    default:
        g_printerr("Unexpected message received: %x.\n", GST_MESSAGE_TYPE(message));
        break;
    }
    gst_message_unref(message);
}

// The error's own text is left unread: the host and the viewer get one plain answer.
void MediaPlayerView::handleError()
{
    showOverlayOfPipeline(QStringLiteral("Error loading media"));
    dumpGraph();
    MediaPlayerParams *const block = loadAcquire(params);
    if (!block)
        return;
    storeRelaxed(block->error, std::int8_t(1));
    storeRelaxed(block->done, std::int8_t(0));
    storeRelaxed(block->busy, std::int8_t(0));
}

void MediaPlayerView::handleEndOfStream()
{
    // Back to a paused start. NULL between the two prerolls makes the first frame show.
    const bool wasActive = loadAcquire(pipelineActive);
    for (const GstState state :
         {GST_STATE_READY, GST_STATE_PAUSED, GST_STATE_NULL, GST_STATE_PAUSED}) {
        gstElementSetState(state);
        if (wasActive && !loadAcquire(pipelineActive))
            return; // the GUI thread waits to end the pipeline
    }
    if (MediaPlayerParams *const block = loadAcquire(params))
        storeRelaxed(block->state, std::int32_t(GST_STATE_PAUSED));
}

void MediaPlayerView::handleStateChanged(GstMessage *message)
{
    GstState oldState = GST_STATE_NULL;
    GstState newState = GST_STATE_NULL;
    GstState pending = GST_STATE_NULL;
    gst_message_parse_state_changed(message, &oldState, &newState, &pending);
    if (MediaPlayerParams *const block = loadAcquire(params))
        storeRelaxed(block->state, std::int32_t(newState));

    // Pipelines have no name of their own: GStreamer calls them "pipeline" and a number.
    const char *name = GST_MESSAGE_SRC_NAME(message);
    if (newState == GST_STATE_PLAYING
        && std::strncmp(name, pipelineNamePrefix, sizeof pipelineNamePrefix - 1) == 0) {
        hideOverlayOfPipeline();
        dumpGraph();
    }
}

void MediaPlayerView::dumpGraph()
{
    if (pipeline)
        gst_debug_bin_to_dot_file(GST_BIN(pipeline), GST_DEBUG_GRAPH_SHOW_ALL, pipelineNamePrefix);
}
