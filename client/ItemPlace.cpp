#include "ItemPlace.h"

#include "Layout.h"
#include "PluginFunctions.h"

#include <MediaPlayer/BasicWidget.h>
#include <MediaPlayer/MediaPlayerParams.h>

#include <QtQml/QQmlEngine>
#include <QtQml/QQmlInfo>

namespace MediaPlayer
{

ItemPlace::ItemPlace(Video *video)
    : q(video), frame(std::make_unique<QQuickItem>()), picture(std::make_unique<QQuickItem>())
{
    for (QQuickItem *item : {frame.get(), picture.get()})
        QQmlEngine::setObjectOwnership(item, QQmlEngine::CppOwnership);
    frame->setParentItem(video);
    picture->setParentItem(frame.get());
    pictureChanged();
    show(nullptr);
}

ItemPlace::~ItemPlace()
{
    setPlayer(nullptr);
}

void ItemPlace::show(Player *given)
{
    if (!given && !own)
        own = std::make_unique<Player>();
    setPlayer(given ? given : own.get());
    if (given)
        own.reset();
    pictureChanged();
}

BasicWidget *ItemPlace::makeControl(QQuickWindow *viewWindow)
{
    if (const QString missing = missingPreparation(); !missing.isEmpty())
        qmlWarning(q) << missing;
    return plugin().createQml(viewWindow, picture.get(), nullptr, 0, 0, 0, 0);
}

void ItemPlace::releaseControl(BasicWidget *control)
{
    control->saveObject(); // which deletes it
}

// Sides change places for a picture that lies on its side.
void ItemPlace::pictureChanged()
{
    const bool lies = orientation % 180 != 0;
    const QSizeF size = lies ? QSizeF(pictureSize()).transposed() : QSizeF(pictureSize());
    const QRectF seen = placeOf(size, q->size(), Qt::AspectRatioMode(mode), QMarginsF(margins));
    const QSizeF unturned = lies ? seen.size().transposed() : seen.size();
    frame->setSize(q->size());
    frame->setClip(!QRectF(QPointF(), q->size()).contains(seen));
    picture->setSize(unturned);
    picture->setPosition(seen.center() - QPointF(unturned.width(), unturned.height()) / 2);
    picture->setRotation(orientation);
    q->setImplicitSize(size.width() > 0 ? size.width() : 0, size.height() > 0 ? size.height() : 0);
}

// Left and right as they are seen, that is, after turning.
int ItemPlace::flips() const
{
    if (!mirrored)
        return MediaPlayerFlipNone;
    return orientation % 180 ? MediaPlayerFlipVertical : MediaPlayerFlipHorizontal;
}

Video::FillMode Video::fillMode() const
{
    return d->mode;
}

void Video::setFillMode(FillMode mode)
{
    if (mode == d->mode)
        return;
    d->mode = mode;
    d->pictureChanged();
    Q_EMIT fillModeChanged();
}

int Video::orientation() const
{
    return d->orientation;
}

void Video::setOrientation(int orientation)
{
    if (orientation % 90) {
        qmlWarning(this) << "orientation is a multiple of 90 degrees";
        return;
    }
    if (orientation == d->orientation)
        return;
    d->orientation = orientation;
    d->pictureChanged();
    d->changed();
    Q_EMIT orientationChanged();
}

bool Video::isMirrored() const
{
    return d->mirrored;
}

void Video::setMirrored(bool mirrored)
{
    if (mirrored == d->mirrored)
        return;
    d->mirrored = mirrored;
    d->changed();
    Q_EMIT mirroredChanged();
}

Player::WhenHidden Video::whenHidden() const
{
    return d->whenHidden;
}

void Video::setWhenHidden(Player::WhenHidden whenHidden)
{
    if (whenHidden == d->whenHidden)
        return;
    d->whenHidden = whenHidden;
    d->changed();
    Q_EMIT whenHiddenChanged();
}

QList<int> Video::cropMargins() const
{
    return {d->margins.left(), d->margins.top(), d->margins.right(), d->margins.bottom()};
}

void Video::setCropMargins(const QList<int> &margins)
{
    if (margins.size() != 4) {
        qmlWarning(this) << "cropMargins is [left, top, right, bottom]";
        return;
    }
    const QMargins wanted(margins[0], margins[1], margins[2], margins[3]);
    if (wanted == d->margins)
        return;
    d->margins = wanted;
    d->pictureChanged();
    Q_EMIT cropMarginsChanged();
}

// An item that leaves its window parks its player now, before anything of the item goes.
void Video::itemChange(ItemChange change, const ItemChangeData &data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange) {
        d->ready = data.window && isComponentComplete();
        d->changed();
    } else if (change == ItemVisibleHasChanged) {
        d->changed();
    }
}

void Video::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    d->pictureChanged();
}

void Video::componentComplete()
{
    QQuickItem::componentComplete();
    d->ready = window() != nullptr;
    d->changed();
}

} // namespace MediaPlayer
