#ifndef IMAGEPROVIDER_H
#define IMAGEPROVIDER_H

#include "Look.h"
#include "Session.h"

#include <QtQuick/QQuickImageProvider>

/// "image://host/play" is a drawing of look::image(); "image://host/cover/3" the cover, whose
/// number changes with it.
class ImageProvider : public QQuickImageProvider
{
public:
    explicit ImageProvider(const Session &theSession)
        : QQuickImageProvider(QQuickImageProvider::Image), session(theSession)
    {
    }

    QImage requestImage(const QString &id, QSize *size, const QSize &requested) override
    {
        QImage image;
        if (id.startsWith(QLatin1String("cover/")))
            image = session.cover();
        if (image.isNull()) // also a cover that is gone already
            image = look::image(id, requested.isEmpty() ? 96 : requested.height());
        *size = image.size();
        return image;
    }

private:
    const Session &session;
};

#endif
