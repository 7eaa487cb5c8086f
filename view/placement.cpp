#include "view/placement.h"

#include "boundary/Record.h"
#include "view/MediaPlayerView.h"
#include "view/liveViews.h"

#include <algorithm>

void moveHostItemToOrigin(const MediaPlayerView &view)
{
    if (QQuickItem *above = view.parentItem ? view.parentItem->parentItem() : nullptr)
        above->setPosition(QPointF(0, 0));
}

void attachVideoObject(MediaPlayerView &view)
{
    const QPointer<QQuickItem> object = view.videoObject;
    const QPointer<QQuickItem> place = view.parentItem;
    if (object)
        object->setParent(place);
    if (object)
        object->setParentItem(place);
}

void parkVideoObject(MediaPlayerView &view)
{
    const QPointer<QQuickItem> object = view.videoObject;
    if (object)
        object->setParent(&view);
    if (object)
        object->setParentItem(nullptr);
}

void reseatVideoObject(MediaPlayerView &view)
{
    const QPointer<QQuickItem> object = view.videoObject;
    const QPointer<QQuickItem> place = view.parentItem;
    if (!object || !view.videoItem || !object->parentItem())
        return;
    object->setParentItem(nullptr);
    if (object)
        object->setParentItem(place);
}

void MediaPlayerView::placeVideoItem()
{
    const QPointer<QQuickItem> item = videoItem;
    if (!item || !videoObject)
        return;
    const QMarginsF margins = Record(params).cropMargins();
    const QSizeF size = videoObject->size();
    item->setWidth(margins.left() + size.width() + margins.right());
    if (item)
        item->setHeight(margins.top() + size.height() + margins.bottom());
    if (item)
        item->setX(-margins.left());
    if (item)
        item->setY(-margins.top());
}

bool isShownBy(const MediaPlayerView &view, const QQuickWidget *widget)
{
    return view.videoObject && view.videoObject->window() == widget->quickWindow();
}

void leaveWidgetBehind(MediaPlayerView &view, QQuickWidget *widget)
{
    view.life.widgetsLeftBehind.append(widget);
}

void dropWidgetsLeftBehind(MediaPlayerView &view)
{
    for (const QPointer<QQuickWidget> &widget : std::exchange(view.life.widgetsLeftBehind, {})) {
        if (!widget)
            continue;
        const auto holder = std::ranges::find_if(liveViews(), [&widget](MediaPlayerView *live) {
            return isShownBy(*live, widget)
                || (live->parentItem && live->parentItem == widget->rootObject());
        });
        if (holder != liveViews().end())
            leaveWidgetBehind(**holder, widget);
        else
            widget->deleteLater();
    }
}
