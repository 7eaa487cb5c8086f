#include "update/commands.h"

#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "diagnostics/Trace.h"
#include "pipeline/Relay.h"
#include "pipeline/sequences.h"

#include <QtCore/QVariant>

#include <utility>

namespace
{

enum class Answer {
    Done,
    Failed,
    Later, ///< the next registration of the record answers
};

// A command's handler: does what the record asks for. One whose target is missing changes nothing
// and is done.
using Handler = Answer (*)(MediaPlayerView &view, const Record &record);

Answer loadMedia(MediaPlayerView &view, const Record &)
{
    return view.loadFile() ? Answer::Done : Answer::Failed;
}

// GObject refuses a value outside a property's range, and writes a critical when it does; asking
// first leaves the property as it is without the noise. NaN is in no range.
bool takesDouble(GstElement *element, const char *property, double value)
{
    const GParamSpec *spec = g_object_class_find_property(G_OBJECT_GET_CLASS(element), property);
    if (!spec || !G_IS_PARAM_SPEC_DOUBLE(spec))
        return false;
    const auto *range = reinterpret_cast<const GParamSpecDouble *>(spec);
    return value >= range->minimum && value <= range->maximum;
}

Answer setVolume(MediaPlayerView &view, const Record &record)
{
    const double volume = record.volume();
    if (view.volumeElement && takesDouble(view.volumeElement, "volume", volume))
        g_object_set(view.volumeElement, "volume", volume, nullptr);
    return Answer::Done;
}

Answer goToState(MediaPlayerView &view, const Record &record)
{
    if (!view.pipeline)
        return Answer::Done;
    {
        const Guard guard(view.lock);
        view.shared.awaitsItem = false; // what comes of this request is told
    }
    view.relay->setErrorsIgnored(false);
    view.updateSize(false);
    const std::int32_t wanted = record.playState();
    if (wanted != GST_STATE_NULL) {
        view.gstElementSetState(static_cast<GstState>(wanted));
        return Answer::Done;
    }
    const Turn turn(view);
    run(view, sequence::stop);
    return Answer::Done;
}

Answer setMute(MediaPlayerView &view, const Record &record)
{
    if (view.volumeElement)
        g_object_set(view.volumeElement, "mute", gboolean(record.mute()), nullptr);
    return Answer::Done;
}

Answer seek(MediaPlayerView &view, const Record &record)
{
    const std::int64_t target = record.seekPosition();
    if (!view.pipeline || target < 0) // GStreamer refuses a negative target with a critical
        return Answer::Done;
    const Turn turn(view);
    if (turn.cutsRewind())
        setState(view, GST_STATE_PAUSED);
    // What the seek makes the elements send has its number, which is higher than this one.
    const std::uint32_t first = gst_util_seqnum_next();
    const auto flags = GstSeekFlags(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_KEY_UNIT);
    const bool takesRanges = view.relay->supply.takesRanges;
    // Before the preroll every seek fails, which says nothing of the source.
    const bool hasPrerolled = isPrerolled(view.pipeline);
    const bool taken =
        takesRanges && gst_element_seek_simple(view.pipeline, GST_FORMAT_TIME, flags, target);
    if (taken || hasPrerolled || !takesRanges)
        view.relay->sought(view.pipeline, taken);
    if (!taken)
        return Answer::Done;
    const Guard guard(view.lock);
    ++view.shared.generation;
    view.shared.firstOfRun = first;
    return Answer::Done;
}

Answer markForRebinding(MediaPlayerView &view, const Record &)
{
    const Guard guard(view.lock);
    storeRelaxed(view.rebindPending, true);
    return Answer::Later;
}

Answer transform(MediaPlayerView &view, const Record &record)
{
    if (view.videoItem)
        QMetaObject::invokeMethod(view.videoItem, "setTransformation",
                                  Q_ARG(QVariant, record.flips()), Q_ARG(QVariant, record.angle()));
    return Answer::Done;
}

Answer crop(MediaPlayerView &view, const Record &)
{
    view.placeVideoItem();
    return Answer::Done;
}

Answer setOpacity(MediaPlayerView &view, const Record &record)
{
    if (view.videoItem)
        view.videoItem->setOpacity(record.opacity());
    return Answer::Done;
}

Answer keepAspectRatio(MediaPlayerView &view, const Record &record)
{
    const QPointer<MediaPlayerView> self(&view);
    if (view.videoSink && view.videoItem) // the sink keeps the policy in its item
        g_object_set(view.videoSink, "force-aspect-ratio", gboolean(record.keepAspectRatio()),
                     nullptr);
    if (self)
        QMetaObject::invokeMethod(&view, "resetItem", Qt::QueuedConnection);
    return Answer::Done;
}

constexpr std::pair<int, Handler> handlers[] = {
    {MediaPlayerCommandLoad, loadMedia},      {MediaPlayerCommandVolume, setVolume},
    {MediaPlayerCommandPlayState, goToState}, {MediaPlayerCommandMute, setMute},
    {MediaPlayerCommandSeek, seek},           {MediaPlayerCommandRebind, markForRebinding},
    {MediaPlayerCommandTransform, transform}, {MediaPlayerCommandCrop, crop},
    {MediaPlayerCommandOpacity, setOpacity},  {MediaPlayerCommandKeepAspectRatio, keepAspectRatio},
};

Answer carryOut(MediaPlayerView &view, std::int32_t command, const Record &record)
{
    for (const auto &[code, handler] : handlers) {
        if (code == command)
            return handler(view, record);
    }
    return Answer::Done; // an unknown code
}

void answerCommand(MediaPlayerView &view, Answer answer)
{
    const Guard guard(view.lock);
    view.shared.commandRunning = false;
    if (const Record record {view.params}) {
        if (answer != Answer::Later)
            record.answerCommand(answer == Answer::Done);
        record.lowerExecute();
    }
}

} // namespace

void MediaPlayerView::updateSize(bool)
{
    traceLine("MediaPlayerView::updateSize");
    if (params)
        setVolume(*this, Record(params));
}

bool carryOutCommand(MediaPlayerView &view)
{
    assertGuiThread();
    const QPointer<MediaPlayerView> self(&view);
    const Record record(view.params);
    record.isExecuting(); // makes the host's operands visible on this thread
    const std::int32_t command = record.command();
    traceFormat("MediaPlayerView::updateValues: %d\n", command);
    {
        const Guard guard(view.lock);
        view.shared.commandRunning = true;
    }
    const Answer answer = carryOut(view, command, record);
    if (!self)
        return false;
    answerCommand(view, answer);
    return true;
}
