#ifndef LIVEVIEWS_H
#define LIVEVIEWS_H

class MediaPlayerView;

// The views of this process, kept so that a record's `view` can be checked before it is followed,
// and so that the application's end finds those that are still alive. GUI thread.

void addLiveView(MediaPlayerView *view);
void removeLiveView(MediaPlayerView *view);

/// Has what plays stopped at the process's exit before the libraries end that have been loaded so
/// far. To be called again when a pipeline has loaded its decoders and the GL driver; those would
/// end first otherwise.
void silenceViewsAtExit();

/// Deletes the views that are still alive.
void endLiveViews();

#endif
