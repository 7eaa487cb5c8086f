#ifndef MEDIAPLAYER_LAYOUT_H
#define MEDIAPLAYER_LAYOUT_H

#include <QtCore/QMarginsF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>

namespace MediaPlayer
{

/// Where a picture lies in a frame at (0, 0): in its middle, shaped as `mode` says, then grown by
/// the margins. A picture of unknown size, or none, fills the frame. Never empty, since a picture
/// cannot be drawn into nothing.
inline QRectF placeOf(QSizeF picture, QSizeF frame, Qt::AspectRatioMode mode,
                      const QMarginsF &margins)
{
    const QSizeF size = picture.isEmpty() ? frame : picture.scaled(frame, mode);
    QRectF place(QPointF((frame.width() - size.width()) / 2, (frame.height() - size.height()) / 2),
                 size);
    place += margins;
    place.setSize(place.size().expandedTo(QSizeF(1, 1)));
    return place;
}

} // namespace MediaPlayer

#endif
