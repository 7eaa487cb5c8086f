#include "view/parking.h"

#include "boundary/Record.h"
#include "pipeline/Relay.h"
#include "pipeline/sequences.h"
#include "view/MediaPlayerView.h"
#include "view/placement.h"

namespace
{

/// Also while it waits for data.
bool isPlaying(MediaPlayerView &view)
{
    const Guard guard(view.lock);
    return Record(view.params).state() == GST_STATE_PLAYING || view.relay->supply.held;
}

/// A pause that is not asked for takes no turn, and so never waits. One that has cut the rewind at
/// the end of a stream leaves the media paused, as the rewind would have: nothing is to resume.
void pauseIfWanted(MediaPlayerView &view)
{
    if (!Record(view.params).pauseOnSave() || !isPlaying(view))
        return;
    const Turn turn(view);
    if (!turn.cutsRewind() && !isPlaying(view))
        return;
    setState(view, GST_STATE_PAUSED);
    if (!turn.cutsRewind())
        view.pausedBySave = true;
}

void resumeIfWanted(MediaPlayerView &view)
{
    if (!Record(view.params).resumeOnRestore() || !view.pausedBySave)
        return;
    const Turn turn(view);
    setState(view, GST_STATE_PLAYING);
    view.pausedBySave = false;
}

} // namespace

bool park(MediaPlayerView &view)
{
    assertGuiThread();
    const QPointer<MediaPlayerView> self(&view);
    parkVideoObject(view);
    if (!self)
        return false;
    if (view.params) {
        pauseIfWanted(view);
        Record(view.params).setAttached(false);
    }
    return true;
}

bool bringBack(MediaPlayerView &view)
{
    assertGuiThread();
    const QPointer<MediaPlayerView> self(&view);
    if (view.videoObject)
        moveHostItemToOrigin(view);
    if (self)
        attachVideoObject(view);
    if (self && view.videoObject)
        view.videoObject->setVisible(true);
    if (self && view.params)
        view.placeVideoItem();
    if (!self)
        return false;
    if (view.params) {
        resumeIfWanted(view);
        Record(view.params).setAttached(true);
    }
    dropWidgetsLeftBehind(view);
    return true;
}
