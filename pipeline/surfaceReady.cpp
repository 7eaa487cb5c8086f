#include "diagnostics/Trace.h"
#include "view/MediaPlayerView.h"
#include "view/liveViews.h"
#include "view/scene.h"

#include <QtQuick/QQuickWindow>

bool MediaPlayerView::isVideoSurfaceReady() const
{
    if (!videoObject)
        return false;
    const QQuickItem *item = videoItem ? videoItem.data() : findVideoItem(videoObject);
    return item && item->window() && videoObject->isVisible() && item->isVisible();
}

// The first preroll of a fresh pipeline builds its chain while the streams appear. The one after
// NULL raises the whole chain from the sink up, as every later one does, and makes returns fast.
void MediaPlayerView::videoItemReady()
{
    if (ending)
        return;
    traceLine("MediaPlayerView::videoItemReady");
    // What has prerolled under this context, and what has no picture, goes on as it is.
    const bool sameContext = quirks.keptContext();
    if (sender() && pipeline && (!videoSink || (sameContext && isAboveReady(pipeline))))
        return;
    const std::lock_guard guard(lock);
    gstElementSetState(GST_STATE_PAUSED);
    gstElementSetState(GST_STATE_NULL);
    if (!pipeline)
        return;
    gstElementSetState(GST_STATE_PAUSED);
    for (const auto &record : std::as_const(pipelineCache))
        record->prerolled |= record->pipeline == pipeline;
    silenceViewsAtExit();
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
