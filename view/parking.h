#ifndef PARKING_H
#define PARKING_H

class MediaPlayerView;

// A player outlives its place on the screen: its picture is parked in the view, and restored under
// the host's item, the same one or another. [gui] The host's code may delete the view inside; both
// tell whether it is still there.

/// Takes the picture out of the host's items, and pauses where the host asked for it.
[[nodiscard]] bool park(MediaPlayerView &view);

/// Puts the picture back, and resumes what parking paused.
[[nodiscard]] bool bringBack(MediaPlayerView &view);

#endif
