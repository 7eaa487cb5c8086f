#ifndef UPDATETHREAD_H
#define UPDATETHREAD_H

/// The routine of a player's own thread; `view` is its MediaPlayerView. Every 50 ms it queues what
/// the host asked for onto the GUI thread and polls the pipeline's bus. It ends by cancellation.
void *tUpdateThread(void *view);

class MediaPlayerView;

/// [update] One pass of it.
void updatePass(MediaPlayerView &view);

#endif
