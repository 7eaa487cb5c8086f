#include "update/listener.h"

#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "pipeline/GstHandle.h"
#include "pipeline/Relay.h"
#include "pipeline/stateChange.h"
#include "update/buffering.h"
#include "update/facts.h"
#include "update/messages.h"

#include <poll.h>

#include <chrono>

namespace
{

using Clock = std::chrono::steady_clock;

// How long the bus must be quiet, and how long a storm of messages may keep values from the host.
constexpr std::chrono::milliseconds quietTime {100};
constexpr std::chrono::milliseconds drainTime {250};

/// Whether the bus has something before `deadline`. Holds no lock.
bool waitForBus(GstBus *bus, Clock::time_point deadline)
{
    GPollFD descriptor;
    gst_bus_get_pollfd(bus, &descriptor);
    pollfd entry {descriptor.fd, POLLIN, 0};
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return left.count() > 0 && poll(&entry, 1, int(left.count())) > 0;
}

/// False when `current` is no longer listened to.
bool drain(MediaPlayerView &view, GstElement *current)
{
    const ObjectRef<GstBus> bus(gst_element_get_bus(current));
    const auto end = Clock::now() + drainTime;
    auto deadline = Clock::now() + quietTime;
    do {
        keepToSupply(view, current);
        switch (popMessage(view, current, bus.get())) {
        case PopResult::Message:
            deadline = Clock::now() + quietTime;
            break;
        case PopResult::Nothing:
            break;
        case PopResult::NotItsTurn:
            return true;
        case PopResult::OtherPipeline:
            return false;
        }
    } while (waitForBus(bus.get(), std::min(deadline, end)));
    return true;
}

void publishFacts(MediaPlayerView &view, const GstElement *current, const QVariantMap &facts)
{
    if (!facts.isEmpty()) // it has prerolled
        view.relay->dropOldError();
    view.relay->change(current, [&](QVariantMap &values) {
        values.insert(facts);
        const QVariant live = facts.value(QStringLiteral("live"));
        if (!live.isValid())
            return;
        view.relay->supply.mayPause = view.relay->supply.fromNetwork && !live.toBool();
        if (live.toBool())
            values.remove(QStringLiteral("buffering"));
    });
}

// A source can hold a query up, so queries run without a lock, and their answers count only if
// nothing has moved the media meanwhile.
void publish(MediaPlayerView &view, GstElement *current)
{
    std::uint32_t before = 0;
    {
        const Guard guard(view.lock);
        before = view.shared.generation;
    }
    gint64 position = 0; // -1 where GStreamer cannot tell
    gint64 duration = 0;
    gst_element_query_position(current, GST_FORMAT_TIME, &position);
    if (!gst_element_query_duration(current, GST_FORMAT_TIME, &duration) || duration < 0)
        duration = 0; // sources without a length say -1

    const QVariantMap facts = factsOf(current);

    const Guard guard(view.lock);
    const Record record(view.params);
    if (!listensTo(view, current))
        return;
    // `execute` first: once it reads 0, the command's work and its number are both in the past.
    const bool executing = record.isExecuting();
    const std::int32_t command = record.command();
    if (!(executing && command == MediaPlayerCommandPlayState))
        record.publishState(standsForWantOfData(view, current) ? GST_STATE_PAUSED
                                                               : stateNow(current).current);
    if (view.shared.generation != before)
        return;
    if (!(executing && command == MediaPlayerCommandSeek))
        record.publishPosition(position);
    record.publishDuration(duration);
    publishFacts(view, current, facts);
}

} // namespace

void listen(MediaPlayerView &view)
{
    // A reference of its own, so that the pipeline does not go while the listener waits or queries.
    ObjectRef<GstElement> current;
    {
        const Guard guard(view.lock);
        if (!listensTo(view, view.pipeline))
            return;
        current.reset(GST_ELEMENT(gst_object_ref(view.pipeline)));
    }
    if (!drain(view, current.get()))
        return;
    publish(view, current.get());
    watchSupply(view, current.get());
}
