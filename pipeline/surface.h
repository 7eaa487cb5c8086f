#ifndef SURFACE_H
#define SURFACE_H

#include "view/MediaPlayerView.h"

// What ties pipelines to the moment at which the video item can take frames. [gui]

/// The item below `root` that the video sink draws into, or null.
QQuickItem *findVideoItem(const QQuickItem *root);

/// Has a new pipeline prerolled as soon as its item can take frames; it stays in READY until then.
void bindVideoItem(MediaPlayerView &view, MediaPlayerView::PipelineCtx &built);

/// Queues videoItemReady() if the item's signal has come already.
void prerollOnceInitialized(MediaPlayerView &view);

/// Prerolls the current pipeline as a new one and hides the overlay. From the item's own signal it
/// does so only where the picture needs it.
void prerollCurrent(MediaPlayerView &view, bool fromSignal) EXCLUDES(view.sequence, view.lock);

/// Cycles the pipeline through its lower states, now and once more when the item has been seated
/// anew.
void stabilize(MediaPlayerView &view) EXCLUDES(view.sequence, view.lock);

#endif
