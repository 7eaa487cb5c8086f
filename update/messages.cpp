#include "update/messages.h"

#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "pipeline/GstHandle.h"
#include "pipeline/Relay.h"
#include "pipeline/sequences.h"

#include <cstring>
#include <memory>
#include <utility>

namespace
{

constexpr auto handledMessages = GstMessageType(GST_MESSAGE_EOS | GST_MESSAGE_ERROR
                                                | GST_MESSAGE_STATE_CHANGED | GST_MESSAGE_ELEMENT);

constexpr char pipelineNamePrefix[] = "pipeline"; // and a number: none has a name of its own

struct MessageRelease {
    void operator()(GstMessage *message) const { gst_message_unref(message); }
};
using MessageRef = std::unique_ptr<GstMessage, MessageRelease>;

GstState newStateOf(GstMessage *message)
{
    GstState newState = GST_STATE_NULL;
    gst_message_parse_state_changed(message, nullptr, &newState, nullptr);
    return newState;
}

/// The pipeline itself has begun to play, rather than one of its elements.
bool isPipelinePlaying(GstMessage *message)
{
    return newStateOf(message) == GST_STATE_PLAYING
        && std::strncmp(GST_MESSAGE_SRC_NAME(message), pipelineNamePrefix,
                        sizeof pipelineNamePrefix - 1)
        == 0;
}

/// An end or a change of state of a run that is over, or that a seek has overtaken. Older, not
/// different: some demuxers number their ends anew.
bool isOvertaken(MediaPlayerView &view, GstMessage *message) REQUIRES(view.lock)
{
    return (GST_MESSAGE_TYPE(message) & (GST_MESSAGE_EOS | GST_MESSAGE_STATE_CHANGED)) != 0
        && gst_util_seqnum_compare(gst_message_get_seqnum(message), view.shared.firstOfRun) < 0;
}

void dumpGraph(GstElement *pipeline)
{
    gst_debug_bin_to_dot_file(GST_BIN(pipeline), GST_DEBUG_GRAPH_SHOW_ALL, pipelineNamePrefix);
}

/// Rewinds to a paused start, and gives up as soon as another thread waits for its turn or ends
/// the pipeline.
void rewind(MediaPlayerView &view, const GstElement *current) REQUIRES(view.sequence)
{
    const auto isOvertakenBy = [&view] {
        return view.sequence.isAwaited() || !loadAcquire(view.pipelineActive);
    };
    if (!run(view, sequence::endOfStream, isOvertakenBy)) {
        view.rewindCut = true;
        return;
    }
    const Guard guard(view.lock);
    if (listensTo(view, current))
        Record(view.params).publishState(GST_STATE_PAUSED);
}

/// The host and the viewer get one plain answer; the error's own text is left unread.
void answerError(MediaPlayerView &view, const GstElement *current) REQUIRES(view.lock)
{
    if (view.shared.awaitsItem)
        return;
    view.showOverlayOf(current, QStringLiteral("Error loading media"));
    if (const Record record {view.params})
        record.answerMediaError();
}

/// Writes what the message means into the record.
void note(MediaPlayerView &view, const GstElement *current, GstMessage *message) REQUIRES(view.lock)
{
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
        answerError(view, current);
    } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_STATE_CHANGED) {
        if (const Record record {view.params})
            record.publishState(newStateOf(message));
        if (isPipelinePlaying(message))
            view.hideOverlayOf(current);
    }
}

struct Taken {
    PopResult result;
    MessageRef message; ///< null where there is nothing to act on
};

Taken take(MediaPlayerView &view, GstElement *current, GstBus *bus) REQUIRES(view.sequence)
{
    const Guard guard(view.lock);
    if (!listensTo(view, current))
        return {PopResult::OtherPipeline, nullptr};
    if (view.shared.commandRunning)
        return {PopResult::NotItsTurn, nullptr};
    if (std::exchange(view.shared.flushedErrorOf, nullptr) == current) {
        answerError(view, current);
        return {PopResult::Message, nullptr};
    }
    MessageRef message(gst_bus_pop_filtered(bus, handledMessages));
    if (!message)
        return {PopResult::Nothing, nullptr};
    if (isOvertaken(view, message.get()))
        return {PopResult::Message, nullptr};
    note(view, current, message.get());
    return {PopResult::Message, std::move(message)};
}

void countEnd(MediaPlayerView &view, const GstElement *current)
{
    view.relay->change(current, [](QVariantMap &values) {
        QVariant &ends = values[QStringLiteral("endOfMedia")];
        ends = ends.toInt() + 1;
    });
}

/// What may print or write a file: no lock is held.
void dumpOrPrint(GstElement *current, GstMessage *message)
{
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
        dumpGraph(current);
        break;
    case GST_MESSAGE_STATE_CHANGED:
        if (isPipelinePlaying(message))
            dumpGraph(current);
        break;
    case GST_MESSAGE_EOS:
        break;
    default:
        g_printerr("Unexpected message received: %x.\n", GST_MESSAGE_TYPE(message));
        break;
    }
}

/// The rest of a message's handling; the turn ends here.
void act(MediaPlayerView &view, GstElement *current, GstMessage *message) RELEASE(view.sequence)
{
    if (message && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
        rewind(view, current);
        countEnd(view, current);
    }
    view.sequence.release();
    if (message && current)
        dumpOrPrint(current, message);
}

} // namespace

bool listensTo(MediaPlayerView &view, const GstElement *candidate)
{
    return candidate && candidate == view.pipeline && view.params
        && loadAcquire(view.pipelineActive) && !loadRelaxed(view.rebindPending);
}

PopResult popMessage(MediaPlayerView &view, GstElement *current, GstBus *bus)
{
    if (!view.sequence.tryAcquire())
        return PopResult::NotItsTurn;
    const Taken taken = take(view, current, bus);
    act(view, current, taken.message.get());
    return taken.result;
}

void MediaPlayerView::handle_message(GstMessage *message)
{
    const MessageRef owned(message);
    sequence.acquire();
    GstElement *const current = pipeline;
    {
        const Guard guard(lock);
        note(*this, current, message);
    }
    act(*this, current, message);
}
