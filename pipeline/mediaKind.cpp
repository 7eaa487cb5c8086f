#include "pipeline/mediaKind.h"

#include "pipeline/GstHandle.h"

#include <QtCore/QMimeDatabase>

#include <sys/stat.h>

MediaKind mediaKindOf(const QString &uri)
{
    const QString type = QMimeDatabase().mimeTypeForFile(uri).name();
    if (type.startsWith(QLatin1String("video"), Qt::CaseInsensitive))
        return MediaKind::Video;
    if (type.startsWith(QLatin1String("audio"), Qt::CaseInsensitive))
        return MediaKind::Audio;
    return MediaKind::Unsupported;
}

bool namesWhatCanBlock(const char *uri)
{
    const GlibText path(g_filename_from_uri(uri, nullptr, nullptr));
    struct stat status;
    return path && stat(path.get(), &status) == 0 && !S_ISREG(status.st_mode)
        && !S_ISDIR(status.st_mode);
}
