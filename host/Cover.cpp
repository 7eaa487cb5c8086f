#include "Cover.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QImageReader>

constexpr int mostPixels = 1024;

QImage coverOf(const QUrl &media, const QVariantMap &metaData)
{
    for (const char *key : {"coverArtImage", "thumbnailImage"}) {
        const QImage image = metaData.value(QLatin1String(key)).value<QImage>();
        if (!image.isNull())
            return image;
    }
    if (!media.isLocalFile())
        return {};
    const QDir folder = QFileInfo(media.toLocalFile()).absoluteDir();
    const QStringList names = folder.entryList(
        {QStringLiteral("cover.*"), QStringLiteral("folder.*"), QStringLiteral("front.*")},
        QDir::Files | QDir::Readable);
    for (const QString &name : names) {
        QImageReader reader(folder.filePath(name));
        const QSize size = reader.size();
        if (size.width() > mostPixels || size.height() > mostPixels)
            reader.setScaledSize(size.scaled(mostPixels, mostPixels, Qt::KeepAspectRatio));
        const QImage image = reader.read();
        if (!image.isNull())
            return image;
    }
    return {};
}
