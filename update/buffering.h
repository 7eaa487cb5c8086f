#ifndef BUFFERING_H
#define BUFFERING_H

#include "view/MediaPlayerView.h"

// What plays from the network waits while its data are short. [update]

/// Pauses what is to play as soon as its data get short, and lets it go on when there are enough.
/// Never waits: neither for a turn nor for the state.
void keepToSupply(MediaPlayerView &view, GstElement *current) EXCLUDES(view.sequence, view.lock);

/// Whether the media stand still because data are short, whatever state the pipeline is still in.
bool standsForWantOfData(MediaPlayerView &view, GstElement *current);

/// Reports an error where data are awaited and not a byte has come for 30 seconds.
void watchSupply(MediaPlayerView &view, GstElement *current) EXCLUDES(view.sequence, view.lock);

#endif
