#include "view/MediaPlayerView.h"

#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "diagnostics/Trace.h"
#include "pipeline/Relay.h"
#include "pipeline/builtPipelines.h"
#include "pipeline/sequences.h"
#include "update/cThread.h"
#include "update/updateThread.h"
#include "view/liveViews.h"
#include "view/placement.h"
#include "view/scene.h"

namespace
{

constexpr int threadStackBytes = 131072;

// One byte too long for the platform, which refuses it: the thread keeps the process's own name,
// as hosts and their tools know it.
char threadName[] = "MediaPlayerUpdate";

} // namespace

// Without an engine the base class makes one for each view, with a thread of its own.
MediaPlayerView::MediaPlayerView(QWindow *hostWindow, QQuickItem *hostItem, QObject *hostContext)
    : QQuickView(sharedEngine(), hostWindow)
    , window(hostWindow)
    , parentItem(hostItem)
    , context(hostContext)
    , relay(QSharedPointer<Relay>::create(this))
{
    traceLine("MediaPlayerView::MediaPlayerView");
    addLiveView(this);
    moveHostItemToOrigin(*this);
    thread = new cThread;
    thread->threadInit(1, SCHED_OTHER, 0, threadStackBytes);
    if (thread->trylockThreadMutex() == 0)
        thread->createThread(tUpdateThread, this, threadName);
    init();
    initQuickWidget();
}

// Hiding, and clearing pipelineActive, come first: the update thread gives up what it is at. The
// video object goes while no lock is held, since its end runs slots of this view and of the
// controls bound to it, which may take the pipeline down before this function does.
MediaPlayerView::~MediaPlayerView()
{
    traceLine("MediaPlayerView::~MediaPlayerView");
    hide();
    storeRelease(pipelineActive, false);
    delete videoObject.data();
    if (params) {
        const Guard guard(lock);
        const Record record(params);
        if (record.view() == this)
            record.setView(nullptr);
        storeRelease(params, nullptr);
    }
    if (pipeline) {
        const Turn turn(*this);
        setState(*this, GST_STATE_NULL);
    }
    traceLine("MediaPlayerView::destroy thread");
    thread->destroyThread();
    if (pipeline) {
        const Turn turn(*this);
        // The thread may have been inside a sequence that raised the pipeline once more.
        takeToNull(pipeline);
        releaseCurrent(*this);
    }
    delete thread;
    relay->close();
    releaseAll(*this);
    removeLiveView(this);
}

void MediaPlayerView::updateReferences(QWindow *hostWindow, QQuickItem *hostItem,
                                       QObject *hostContext)
{
    traceLine("MediaPlayerView::updateReferences");
    window = hostWindow;
    parentItem = hostItem;
    context = hostContext;
    const QPointer<MediaPlayerView> self(this);
    // The view goes with its host's window, so it belongs to the one that shows it now. A widget
    // host gives no window: the view then stays where it is. Both windows hear of the move, and the
    // host's code there may end the view.
    if (hostWindow && hostWindow != parent())
        setParent(hostWindow);
    if (!self || !params || !rebindPending || !switchedOn(enableWorkaround))
        return;
    const Guard guard(lock);
    storeRelaxed(rebindPending, false);
    Record(params).answerRebinding();
}

void MediaPlayerView::bind(const QObject *control, MediaPlayerParams *hostRecord)
{
    assertGuiThread();
    life.bound = true;
    life.control = control;
    const Guard guard(lock);
    storeRelease(params, hostRecord);
}

void MediaPlayerView::scheduleDeletion()
{
    life.deletionScheduled = true;
    deleteLater();
}

void MediaPlayerView::yieldRecord()
{
    {
        const Guard guard(lock);
        storeRelease(params, nullptr);
    }
    unrefPipe();
}
