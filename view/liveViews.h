#ifndef LIVEVIEWS_H
#define LIVEVIEWS_H

#include <span>

class MediaPlayerView;

// The views of this process. [gui]

void addLiveView(MediaPlayerView *view);
void removeLiveView(MediaPlayerView *view);

std::span<MediaPlayerView *const> liveViews();

/// Whether `view` is a view of this process. Accepts any address, such as what a host's record
/// holds.
bool isLive(const MediaPlayerView *view);

/// Deletes the views that are still alive when the application object goes.
void endLiveViews();

#endif
