#ifndef SEQUENCES_H
#define SEQUENCES_H

#include "pipeline/stateChange.h"
#include "view/MediaPlayerView.h"

#include <span>

// Changes of state of the view's current pipeline. Each comes in its turn: the sequence lock is
// held over the whole of it, and nothing else is.

/// One thread's turn at the current pipeline. Not for the update thread, which may only try.
class SCOPED_CAPABILITY Turn
{
public:
    explicit Turn(MediaPlayerView &view) ACQUIRE(view.sequence);
    ~Turn() RELEASE();

    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /// The turn has cut a rewind short: the media has ended, and its pipeline may be anywhere.
    bool cutsRewind() const { return m_cutsRewind; }

private:
    MediaPlayerView &m_view;
    bool m_cutsRewind;
};

namespace sequence
{

/// Of a new video. The first preroll builds the chain while the streams appear, under a picture
/// that stays black. The one after NULL raises the whole chain from the sink up, as every later
/// one does, and shows the first frame.
inline constexpr GstState prerollOfNew[] = {GST_STATE_PAUSED, GST_STATE_NULL, GST_STATE_PAUSED};

/// Back to a paused start. NULL between the two prerolls makes the first frame show.
inline constexpr GstState endOfStream[] = {GST_STATE_READY, GST_STATE_PAUSED, GST_STATE_NULL,
                                           GST_STATE_PAUSED};

/// The host's request for NULL never leaves the media there.
inline constexpr GstState stop[] = {GST_STATE_READY, GST_STATE_NULL, GST_STATE_PAUSED};

inline constexpr GstState cycle[] = {GST_STATE_READY, GST_STATE_PAUSED};
inline constexpr GstState reset[] = {GST_STATE_NULL, GST_STATE_PAUSED};

} // namespace sequence

/// [any] Whether a pipeline can be asked for it.
bool isStateToGoTo(GstState state);

/// One step: asks for a state and waits for it, as gstElementSetState() does.
GstStateChangeReturn setState(MediaPlayerView &view, GstState state, const GiveUp &giveUp = {})
    REQUIRES(view.sequence) EXCLUDES(view.lock);

/// Every step in turn, whatever the one before came to; false when it was given up. The first one
/// is always taken: after an end of stream, media that nothing has moved would not end again.
bool run(MediaPlayerView &view, std::span<const GstState> states, const GiveUp &giveUp = {})
    REQUIRES(view.sequence) EXCLUDES(view.lock);

#endif
