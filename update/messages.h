#ifndef MESSAGES_H
#define MESSAGES_H

#include "view/MediaPlayerView.h"

// One message of the bus at a time. [update]

enum class PopResult {
    Message,
    Nothing, ///< the bus had none that matters
    NotItsTurn, ///< another thread is at the pipeline, or a command has not reported
    OtherPipeline, ///< `current` is not listened to any more
};

/// Takes one message off the bus of `current` and does what it says. Never waits for a turn.
PopResult popMessage(MediaPlayerView &view, GstElement *current, GstBus *bus)
    EXCLUDES(view.sequence, view.lock);

/// Whether `candidate` is current, active and not marked for re-binding, and has a record to write.
bool listensTo(MediaPlayerView &view, const GstElement *candidate) REQUIRES(view.lock);

#endif
