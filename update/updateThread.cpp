#include "update/updateThread.h"

#include "diagnostics/Trace.h"
#include "update/cThread.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

#include <unistd.h>

namespace
{

constexpr useconds_t pollInterval = 50'000;

} // namespace

// A cancellation may only land in the sleep: a pass takes locks of ours, of Qt's and of
// GStreamer's. This frame has no local with a destructor, since a cancellation unwinds it, and the
// type is deferred, since an asynchronous one that lands between two calls cannot be unwound.
void *tUpdateThread(void *argument)
{
    auto *view = static_cast<MediaPlayerView *>(argument);
    view->thread->setCancelState();
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    pthread_setcanceltype(PTHREAD_CANCEL_DEFERRED, nullptr);
    for (;;) {
        view->updatePass();
        pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, nullptr);
        usleep(pollInterval);
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    }
}

void MediaPlayerView::updatePass()
{
    MediaPlayerParams *block = loadAcquire(params);
    if (!block || loadAcquire(ending))
        return;

    // At most one slot is queued or running at a time, and invokePending is read before `execute`:
    // a slot lowers `execute` first, so a finished command is never taken for a new one.
    const auto queue = [this](const char *slot) {
        QMetaObject::invokeMethod(this, slot, Qt::QueuedConnection);
    };
    if (loadAcquire(invokePending)) {
        // whatever else is wanted waits
    } else if (loadRelaxed(saveRequested)) {
        traceLine("Update invoke saveObject MP");
        storeRelaxed(invokePending, true);
        storeRelaxed(saveRequested, false);
        queue("saveObject");
    } else if (loadRelaxed(restoreRequested)) {
        traceLine("Update invoke restore MP");
        storeRelaxed(invokePending, true);
        storeRelaxed(restoreRequested, false);
        queue("restore");
    } else if (!loadAcquire(commandQueued) && loadAcquire(block->execute) != 0) {
        // A direct saveObject() clears invokePending while a queued command still waits;
        // commandQueued keeps that command from being queued again.
        traceLine("Update invoke updateValues MP");
        storeRelaxed(invokePending, true);
        storeRelaxed(commandQueued, true);
        queue("updateValues");
    }

    if (loadAcquire(pipeline))
        busListenerFunction();
}
