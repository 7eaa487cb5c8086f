#include "diagnostics/Trace.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

#include <QtCore/QVariant>

// GObject refuses a value outside a property's range, and writes a critical when it does; asking
// first leaves the property as it is without the noise. NaN is in no range.
static bool takesDouble(GstElement *element, const char *property, double value)
{
    const GParamSpec *spec = g_object_class_find_property(G_OBJECT_GET_CLASS(element), property);
    if (!spec || !G_IS_PARAM_SPEC_DOUBLE(spec))
        return false;
    const auto *range = reinterpret_cast<const GParamSpecDouble *>(spec);
    return value >= range->minimum && value <= range->maximum;
}

void MediaPlayerView::applyVolume()
{
    const double volume = loadRelaxed(params->volume);
    if (volumeElement && takesDouble(volumeElement, "volume", volume))
        g_object_set(volumeElement, "volume", volume, nullptr);
}

void MediaPlayerView::updateSize(bool)
{
    traceLine("MediaPlayerView::updateSize");
    if (params)
        applyVolume();
}

void MediaPlayerView::updateValues()
{
    if (ending || !params)
        return;
    // The acquire makes the host's operands visible on this thread.
    loadAcquire(params->execute);
    const std::int32_t command = loadRelaxed(params->command);
    traceFormat("MediaPlayerView::updateValues: %d\n", command);

    storeRelease(commandRunning, true);
    runCommand(command);
    storeRelease(commandRunning, false);
    if (ending)
        return; // the scene's functions can run the host's code, which may have ended the view
    storeRelease(params->execute, std::int8_t(0));
    storeRelease(invokePending, false);
    storeRelease(commandQueued, false);
    traceLine("Update values done");
}

void MediaPlayerView::runCommand(std::int32_t command)
{
    bool done = true;
    switch (command) {
    case MediaPlayerCommandLoad:
        done = loadFile();
        break;
    case MediaPlayerCommandVolume:
        applyVolume();
        break;
    case MediaPlayerCommandPlayState:
        commandPlayState();
        break;
    case MediaPlayerCommandMute:
        if (volumeElement)
            g_object_set(volumeElement, "mute", gboolean(loadRelaxed(params->mute) != 0), nullptr);
        break;
    case MediaPlayerCommandSeek:
        commandSeek();
        break;
    case MediaPlayerCommandRebind: {
        const std::lock_guard guard(lock);
        storeRelaxed(rebindPending, true);
        return; // the next registration answers
    }
    case MediaPlayerCommandTransform:
        commandTransform();
        break;
    case MediaPlayerCommandCrop:
        placeVideoItem();
        break;
    case MediaPlayerCommandOpacity:
        if (videoItem)
            videoItem->setOpacity(loadRelaxed(params->opacity));
        break;
    case MediaPlayerCommandKeepAspectRatio:
        if (videoSink && videoItem) { // the sink keeps the policy in its item
            const gboolean keep = loadRelaxed(params->keepAspectRatio) != 0;
            g_object_set(videoSink, "force-aspect-ratio", keep, nullptr);
        }
        QMetaObject::invokeMethod(this, "resetItem", Qt::QueuedConnection);
        break;
    default:
        break;
    }
    report(done);
}

void MediaPlayerView::commandPlayState()
{
    if (!pipeline)
        return;
    updateSize(false);
    const std::int32_t wanted = loadRelaxed(params->playState);
    const std::lock_guard guard(lock);
    if (wanted != GST_STATE_NULL) {
        gstElementSetState(static_cast<GstState>(wanted));
        return;
    }
    gstElementSetState(GST_STATE_READY);
    gstElementSetState(GST_STATE_NULL);
    gstElementSetState(GST_STATE_PAUSED);
}

void MediaPlayerView::commandSeek()
{
    const std::int64_t target = loadRelaxed(params->seekPosition);
    if (!pipeline || target < 0) // GStreamer refuses a negative target with a critical
        return;
    const std::lock_guard guard(lock);
    const auto flags = GstSeekFlags(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_KEY_UNIT);
    const bool moved = gst_element_seek_simple(pipeline, GST_FORMAT_TIME, flags, target);
    nextGeneration();
    if (moved)
        dropOvertakenEnd();
}

void MediaPlayerView::commandTransform()
{
    if (!videoItem)
        return;
    const int flips = loadRelaxed(params->transformBit0) + 2 * loadRelaxed(params->transformBit1);
    const int angle = loadRelaxed(params->transformParam);
    QMetaObject::invokeMethod(videoItem, "setTransformation", Q_ARG(QVariant, flips),
                              Q_ARG(QVariant, angle));
}

void MediaPlayerView::report(bool done)
{
    if (ending)
        return;
    const std::lock_guard guard(lock);
    storeRelaxed(params->done, std::int8_t(done));
    storeRelaxed(params->error, std::int8_t(!done));
    storeRelaxed(params->busy, std::int8_t(0));
}
