#ifndef BUILTPIPELINES_H
#define BUILTPIPELINES_H

#include "view/MediaPlayerView.h"

// The pipelines that a view has built, one of which is current.
//
// Who owns what: a PipelineCtx holds one reference on its pipeline and one on each chain element,
// so that the elements stay valid whether or not they have been added to it. The source belongs
// to the pipeline. A PipelineCtx that is destroyed releases nothing; release() does, when no
// thread can reach its elements any more. The view's own members hold no references.

/// Takes the current pipeline down to READY, or to NULL where it does not get there in time, and
/// throws away what is on its bus. Its streaming threads work on the view's members, so this comes
/// before the members change.
void retireCurrent(MediaPlayerView &view) REQUIRES(view.sequence) EXCLUDES(view.lock);

/// Mirrors a built pipeline in the view's members; a default one leaves the view without any.
void makeCurrent(MediaPlayerView &view, const MediaPlayerView::PipelineCtx &built)
    REQUIRES(view.sequence) EXCLUDES(view.lock);

/// Leaves the view without a pipeline, and releases the one that was current. It is in NULL.
void releaseCurrent(MediaPlayerView &view) REQUIRES(view.sequence) EXCLUDES(view.lock);

/// Releases all of them. The update thread has been joined.
void releaseAll(MediaPlayerView &view);

/// Gives back the references of one, and forgets its elements.
void release(MediaPlayerView::PipelineCtx &built);

#endif
