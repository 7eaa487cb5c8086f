#include "update/updateThread.h"

#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "diagnostics/Trace.h"
#include "update/cThread.h"
#include "view/MediaPlayerView.h"

#include <unistd.h>

namespace
{

constexpr useconds_t pollInterval = 50'000;

/// A slot that the host has asked for, and the mark that its asking left.
struct Request {
    const char *slot;
    const char *line;
    bool *mark; ///< lowered when the slot is queued; null for a command
};

/// At most one slot is queued or running at a time. invokePending is read before `execute`: a slot
/// lowers `execute` first, so a finished command is never taken for a new one.
Request wanted(MediaPlayerView &view) REQUIRES(view.lock)
{
    if (loadAcquire(view.invokePending))
        return {};
    if (loadRelaxed(view.saveRequested))
        return {"saveObject", "Update invoke saveObject MP", &view.saveRequested};
    if (loadRelaxed(view.restoreRequested))
        return {"restore", "Update invoke restore MP", &view.restoreRequested};
    // A direct saveObject() clears invokePending while a queued command still waits; commandQueued
    // keeps that command from being queued again.
    if (!loadAcquire(view.commandQueued) && Record(view.params).isExecuting())
        return {"updateValues", "Update invoke updateValues MP", nullptr};
    return {};
}

void queue(MediaPlayerView &view, const Request &request)
{
    traceLine(request.line);
    storeRelaxed(view.invokePending, true);
    if (request.mark)
        storeRelaxed(*request.mark, false);
    else
        storeRelaxed(view.commandQueued, true);
    QMetaObject::invokeMethod(&view, request.slot, Qt::QueuedConnection);
}

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
        updatePass(*view);
        pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, nullptr);
        usleep(pollInterval);
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    }
}

void updatePass(MediaPlayerView &view)
{
    Request request {};
    {
        const Guard guard(view.lock);
        if (!view.params)
            return;
        request = wanted(view);
    }
    if (request.slot)
        queue(view, request);
    if (loadAcquire(view.pipeline))
        view.busListenerFunction();
}
