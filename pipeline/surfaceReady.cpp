#include "diagnostics/Trace.h"
#include "view/MediaPlayerView.h"
#include "view/scene.h"

bool MediaPlayerView::isVideoSurfaceReady() const
{
    if (!videoObject)
        return false;
    const QQuickItem *item = videoItem ? videoItem.data() : findVideoItem(videoObject);
    return item && item->window() && videoObject->isVisible() && item->isVisible();
}

// The first preroll of a fresh pipeline leaves the item black; the one after NULL shows the first
// frame, and makes every later return to this pipeline fast.
void MediaPlayerView::videoItemReady()
{
    if (ending)
        return;
    traceLine("MediaPlayerView::videoItemReady");
    const std::lock_guard guard(lock);
    gstElementSetState(GST_STATE_PAUSED);
    gstElementSetState(GST_STATE_NULL);
    if (!pipeline)
        return;
    gstElementSetState(GST_STATE_PAUSED);
    // Posted before the lock is released: an error that this preroll has left on the bus is shown
    // afterwards, and stays.
    hideOverlay();
}

void MediaPlayerView::stabilizeAfterLoad()
{
    if (ending)
        return;
    traceLine("MediaPlayerView::stabilizeAfterLoad");
    if (!isVideoSurfaceReady())
        QMetaObject::invokeMethod(this, "resetItem", Qt::QueuedConnection);
    const std::lock_guard guard(lock);
    if (!pipeline)
        return;
    gstElementSetState(GST_STATE_READY);
    gstElementSetState(GST_STATE_PAUSED);
    if (pipeline)
        QMetaObject::invokeMethod(this, "nulldownAndPauseOnGuiThread", Qt::QueuedConnection);
}
