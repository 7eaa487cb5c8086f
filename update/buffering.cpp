#include "update/buffering.h"

#include "boundary/AtomicAccess.h"
#include "pipeline/GstHandle.h"
#include "pipeline/Relay.h"
#include "pipeline/stateChange.h"
#include "update/messages.h"

#include <utility>

namespace
{

constexpr std::chrono::seconds silenceBeforeError {30};

bool isToPlay(GstElement *pipeline)
{
    GST_OBJECT_LOCK(pipeline);
    const GstState target = GST_STATE_TARGET(pipeline);
    GST_OBJECT_UNLOCK(pipeline);
    return target == GST_STATE_PLAYING;
}

bool isFreeToAct(MediaPlayerView &view, const GstElement *current) REQUIRES(view.sequence)
{
    const Guard guard(view.lock);
    return listensTo(view, current) && !view.shared.commandRunning;
}

// The states are not traced: nobody has asked for them.
void keepToSupplyInTurn(MediaPlayerView &view, GstElement *current) REQUIRES(view.sequence)
{
    Supply &supply = view.relay->supply;
    const bool pauses = supply.isAwaited() && isToPlay(current); // held or not: once is enough
    const bool goesOn = supply.held && !supply.isShort();
    if (!pauses && !goesOn)
        return;
    supply.held = pauses;
    Quirks::changeState(current, loadRelaxed(view.videoSink),
                        pauses ? GST_STATE_PAUSED : GST_STATE_PLAYING);
}

/// How far the sources have read, all together: it changes with every byte.
gint64 bytesReadBy(GstElement *pipeline)
{
    gint64 total = 0;
    GstIterator *const elements = gst_bin_iterate_recurse(GST_BIN(pipeline));
    gst_iterator_foreach(
        elements,
        [](const GValue *value, gpointer sum) {
            GstElement *const element = GST_ELEMENT(g_value_get_object(value));
            gint64 position = 0;
            if (GST_OBJECT_FLAG_IS_SET(element, GST_ELEMENT_FLAG_SOURCE) && !GST_IS_BIN(element)
                && gst_element_query_position(element, GST_FORMAT_BYTES, &position))
                *static_cast<gint64 *>(sum) += position;
        },
        &total);
    gst_iterator_free(elements);
    return total;
}

bool awaitsData(const Supply &supply, GstElement *current)
{
    return supply.fromNetwork && !supply.failed
        && (supply.mayPause ? supply.isShort() : stateNow(current).last == GST_STATE_CHANGE_ASYNC);
}

} // namespace

// A pause that comes when the sinks have nothing left waits for data, too.
bool standsForWantOfData(MediaPlayerView &view, GstElement *current)
{
    const Supply &supply = view.relay->supply;
    return supply.held || (supply.isAwaited() && stateNow(current).pending == GST_STATE_PAUSED);
}

void keepToSupply(MediaPlayerView &view, GstElement *current)
{
    if (!view.relay->supply.fromNetwork)
        return;
    if (!view.sequence.tryAcquire())
        return;
    if (isFreeToAct(view, current))
        keepToSupplyInTurn(view, current);
    view.sequence.release();
}

void watchSupply(MediaPlayerView &view, GstElement *current)
{
    SupplyWatch &watch = view.relay->watch;
    const auto now = std::chrono::steady_clock::now();
    if (!awaitsData(view.relay->supply, current)) {
        watch.since = now;
        return;
    }
    const std::pair read(view.relay->supply.run.load(), bytesReadBy(current));
    if (std::exchange(watch.read, read) != read)
        watch.since = now;
    if (now - watch.since < silenceBeforeError)
        return;
    watch.since = now;
    GST_ELEMENT_ERROR(current, RESOURCE, READ, ("No data has come for 30 seconds."), (nullptr));
}
