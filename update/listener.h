#ifndef LISTENER_H
#define LISTENER_H

#include "view/MediaPlayerView.h"

// What the update thread takes from GStreamer and publishes for the host. [update]

/// Drains the current pipeline's bus until it has been quiet for 100 ms, and for 250 ms at most;
/// then publishes state, position and duration. Needs an active pipeline that is not marked for
/// re-binding.
void listen(MediaPlayerView &view) EXCLUDES(view.sequence, view.lock);

#endif
