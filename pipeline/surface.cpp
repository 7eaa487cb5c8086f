#include "pipeline/surface.h"

#include "pipeline/Relay.h"
#include "pipeline/sequences.h"

namespace
{

/// A preroll that succeeds has the last word on errors of those before it.
void markPrerolled(MediaPlayerView &view, bool succeeded)
{
    {
        const Guard guard(view.lock);
        if (std::exchange(view.shared.awaitsItem, false) || succeeded)
            view.shared.flushedErrorOf = nullptr;
    }
    view.relay->setErrorsIgnored(false);
    if (succeeded)
        view.relay->dropOldError();
    for (const auto &built : std::as_const(view.pipelineCache))
        built->prerolled |= built->pipeline == view.pipeline;
}

/// The item reports itself in each window that it comes into. A picture that has prerolled under
/// the GL context of this window goes on as it is, and so does media without one; but not media
/// that have failed.
bool goesOnAsItIs(MediaPlayerView &view, bool keptContext)
{
    return view.pipeline && stateNow(view.pipeline).last != GST_STATE_CHANGE_FAILURE
        && (!view.videoSink || (keptContext && isAboveReady(view.pipeline)));
}

} // namespace

QQuickItem *findVideoItem(const QQuickItem *root)
{
    return root->findChild<QQuickItem *>(QStringLiteral("videoItem"));
}

bool MediaPlayerView::isVideoSurfaceReady() const
{
    if (!videoObject)
        return false;
    const QQuickItem *item = videoItem ? videoItem.data() : findVideoItem(videoObject);
    return item && item->window() && videoObject->isVisible() && item->isVisible();
}

void bindVideoItem(MediaPlayerView &view, MediaPlayerView::PipelineCtx &built)
{
    if (view.videoObject)
        built.videoItem = findVideoItem(view.videoObject);
    QQuickItem *const item = built.videoItem;
    if (!built.videoSink || !item)
        return;
    QObject::connect(item, SIGNAL(itemInitializedChanged()), &view, SLOT(videoItemReady()),
                     Qt::UniqueConnection);
    item->setAcceptHoverEvents(false); // Qt 6.4 hovers over disabled items too
    prerollOnceInitialized(view);
    g_object_set(built.videoSink, "widget", item, "force-aspect-ratio", FALSE, nullptr);
    view.quirks.sinkBound(built.videoSink);
}

void prerollOnceInitialized(MediaPlayerView &view)
{
    if (view.quirks.isItemInitialized())
        QMetaObject::invokeMethod(&view, "videoItemReady", Qt::QueuedConnection);
}

void prerollCurrent(MediaPlayerView &view, bool fromSignal)
{
    const bool initialized = view.quirks.isItemInitialized();
    // Parked since it reported itself, the item reports itself again in its next window.
    if (fromSignal && !initialized && view.videoSink && goesOnAsItIs(view, true))
        return;
    const bool keptContext = initialized && view.quirks.keptContext();
    if (fromSignal && goesOnAsItIs(view, keptContext)) {
        markPrerolled(view, true);
        view.hideOverlay();
        return;
    }
    const Turn turn(view);
    if (!view.pipeline) {
        run(view, std::span(sequence::prerollOfNew).first<2>());
        return;
    }
    run(view, sequence::prerollOfNew);
    markPrerolled(view, stateNow(view.pipeline).current == GST_STATE_PAUSED);
    MediaPlayerView::librariesLoaded();
    // Posted within the turn, so that an error which this preroll has left on the bus is shown
    // afterwards, and stays.
    view.hideOverlay();
}

void stabilize(MediaPlayerView &view)
{
    if (!view.isVideoSurfaceReady())
        QMetaObject::invokeMethod(&view, "resetItem", Qt::QueuedConnection);
    if (!view.pipeline)
        return;
    const Turn turn(view);
    run(view, sequence::cycle);
    QMetaObject::invokeMethod(&view, "nulldownAndPauseOnGuiThread", Qt::QueuedConnection);
}
