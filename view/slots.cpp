#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "diagnostics/Trace.h"
#include "pipeline/builtPipelines.h"
#include "pipeline/load.h"
#include "pipeline/sequences.h"
#include "pipeline/surface.h"
#include "update/commands.h"
#include "update/listener.h"
#include "view/MediaPlayerView.h"
#include "view/parking.h"
#include "view/placement.h"

// The slots in the meta-object's order. Each writes its trace lines, looks whether the view has
// what it needs, and hands over to the room that does the work. The update thread waits for the
// first three: they clear its marks on every path, unless the view is gone.

void MediaPlayerView::restore()
{
    traceLine("MediaPlayerView::restore");
    if (!bringBack(*this))
        return;
    storeRelease(invokePending, false);
    traceLine("restore done");
}

bool MediaPlayerView::saveObject()
{
    traceLine("MediaPlayerView::saveObject");
    const bool parks = !rebindPending || switchedOn(enableWorkaround);
    if (parks && !park(*this))
        return false;
    storeRelease(invokePending, false);
    traceLine("save mp done");
    return false;
}

void MediaPlayerView::updateValues()
{
    if (params && !carryOutCommand(*this))
        return;
    storeRelease(invokePending, false);
    storeRelease(commandQueued, false);
    traceLine("Update values done");
}

void MediaPlayerView::busListenerFunction()
{
    if (loadAcquire(pipelineActive) && !loadRelaxed(rebindPending))
        listen(*this);
}

bool MediaPlayerView::loadFile()
{
    traceLine("MediaPlayerView::loadFile");
    return params && !life.pipelineReleased && load(*this);
}

GstStateChangeReturn MediaPlayerView::gstElementSetState(GstState state)
{
    if (isStateToGoTo(state) && !sequence.isHeldByCaller()) {
        const Turn turn(*this);
        return setState(*this, state);
    }
    traceFormat("MediaPlayerView::gstElementSetState: %d\n", int(state));
    return GST_STATE_CHANGE_FAILURE;
}

void MediaPlayerView::resetItem()
{
    traceLine("MediaPlayerView::resetItem");
    reseatVideoObject(*this);
}

// The video object is going by itself, here also while the view is being destroyed. A control that
// is bound ends the view. One that has left its view behind cannot, and a player without its scene
// is of no use to the next control.
void MediaPlayerView::onDestruct()
{
    traceLine("MediaPlayerView::onDestruct");
    videoObject = nullptr;
    const QPointer<MediaPlayerView> self(this);
    Q_EMIT destruct();
    if (!self || !life.bound || life.deletionScheduled)
        return;
    unrefPipe();
    scheduleDeletion();
}

void MediaPlayerView::unrefPipe()
{
    storeRelease(pipelineActive, false);
    if (!pipeline)
        return;
    const Turn turn(*this);
    setState(*this, GST_STATE_NULL);
    awaitNull(pipeline);
    releaseCurrent(*this);
    life.pipelineReleased = true;
}

void MediaPlayerView::stabilizeAfterLoad()
{
    traceLine("MediaPlayerView::stabilizeAfterLoad");
    stabilize(*this);
}

void MediaPlayerView::onVisible(bool ready)
{
    traceFormat("###             MediaPlayerControl::onVisible: %d\n", int(ready));
}

void MediaPlayerView::nulldownAndPauseOnGuiThread()
{
    traceLine("MediaPlayerView::nulldownAndPauseOnGuiThread");
    if (!pipeline)
        return;
    const Turn turn(*this);
    run(*this, sequence::reset);
}

void MediaPlayerView::videoItemReady()
{
    traceLine("MediaPlayerView::videoItemReady");
    prerollCurrent(*this, sender());
}
