#include "diagnostics/Trace.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"
#include "view/scene.h"

bool MediaPlayerView::saveObject()
{
    if (ending)
        return false;
    traceLine("MediaPlayerView::saveObject");
    if (!rebindPending || switchedOn(enableWorkaround)) {
        if (videoObject) {
            videoObject->setParent(this);
            videoObject->setParentItem(nullptr);
        }
        if (params) {
            pauseForSave();
            storeRelaxed(params->attached, std::int8_t(0));
        }
    }
    storeRelease(invokePending, false);
    traceLine("save mp done");
    return false;
}

void MediaPlayerView::pauseForSave()
{
    const std::lock_guard guard(lock);
    if (loadRelaxed(params->pauseOnSave) == 0 || loadRelaxed(params->state) != GST_STATE_PLAYING)
        return;
    gstElementSetState(GST_STATE_PAUSED);
    pausedBySave = true;
}

void MediaPlayerView::restore()
{
    if (ending)
        return;
    traceLine("MediaPlayerView::restore");
    if (videoObject) {
        moveHostItemToOrigin();
        attachVideoObject();
    }
    if (videoObject)
        videoObject->setVisible(true);
    if (params) {
        placeVideoItem();
        resumeAfterRestore();
        storeRelaxed(params->attached, std::int8_t(1));
    }
    dropWidgetsLeftBehind();
    storeRelease(invokePending, false);
    traceLine("restore done");
}

void MediaPlayerView::resumeAfterRestore()
{
    if (loadRelaxed(params->resumeOnRestore) == 0 || !pausedBySave)
        return;
    const std::lock_guard guard(lock);
    gstElementSetState(GST_STATE_PLAYING);
    pausedBySave = false;
}

void MediaPlayerView::moveHostItemToOrigin()
{
    if (QQuickItem *above = parentItem ? parentItem->parentItem() : nullptr)
        above->setPosition(QPointF(0, 0));
}

void MediaPlayerView::placeVideoItem()
{
    if (!videoItem || !videoObject)
        return;
    const qreal left = loadRelaxed(params->cropLeft);
    const qreal top = loadRelaxed(params->cropTop);
    const qreal right = loadRelaxed(params->cropRight);
    const qreal bottom = loadRelaxed(params->cropBottom);
    videoItem->setWidth(left + videoObject->width() + right);
    videoItem->setHeight(top + videoObject->height() + bottom);
    videoItem->setX(-left);
    videoItem->setY(-top);
}

void MediaPlayerView::resetItem()
{
    if (ending)
        return;
    traceLine("MediaPlayerView::resetItem");
    if (!videoObject || !videoItem || !videoObject->parentItem())
        return;
    videoObject->setParentItem(nullptr);
    videoObject->setParentItem(parentItem);
}

void MediaPlayerView::onVisible(bool ready)
{
    traceFormat("###             MediaPlayerControl::onVisible: %d\n", int(ready));
}

// The video object is going by itself, here also while the view is being destroyed.
void MediaPlayerView::onDestruct()
{
    traceLine("MediaPlayerView::onDestruct");
    videoObject = nullptr;
    Q_EMIT destruct();
    // A control that is bound has ended the view by now. One that has left its view behind cannot,
    // and a player without its scene is of no use to the next control.
    if (bound && !ending) {
        unrefPipe();
        deleteLater();
    }
}

// With enableWorkaround a control leaves its quick widget alive, since the video object may still
// sit in it. Once the object has moved on the widget serves nobody.
void MediaPlayerView::dropWidgetsLeftBehind()
{
    for (qsizetype i = widgetsLeftBehind.size() - 1; i >= 0; --i) {
        QQuickWidget *widget = widgetsLeftBehind[i];
        if (widget && parentItem && widget->rootObject() == parentItem)
            continue;
        if (widget)
            widget->deleteLater();
        widgetsLeftBehind.removeAt(i);
    }
}
