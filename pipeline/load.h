#ifndef LOAD_H
#define LOAD_H

class MediaPlayerView;

/// Makes the media that the record names current: as it is, from the cache, or newly built. False
/// when it is refused; the viewer is told why. [gui] Needs a record. Takes the view's locks.
bool load(MediaPlayerView &view);

#endif
