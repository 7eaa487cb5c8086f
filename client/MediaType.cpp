#include "MediaType.h"

#include <QtCore/QFile>
#include <QtCore/QMimeDatabase>
#include <QtCore/QUrl>

namespace MediaPlayer
{
namespace
{

const QMimeDatabase &database()
{
    static const QMimeDatabase types;
    return types;
}

bool isOfKind(const QByteArray &uri, QLatin1String kind)
{
    const QString name = QString::fromUtf8(uri);
    return database().mimeTypeForFile(name, QMimeDatabase::MatchExtension).name().startsWith(kind);
}

constexpr QLatin1String video("video/");
constexpr QLatin1String audio("audio/");

/// GStreamer looks at the content itself, so of each kind any name will do.
QString suffixOfKind(const QMimeType &type)
{
    const QString own = type.preferredSuffix();
    const QByteArray name = "a." + own.toLatin1();
    if (type.name().startsWith(video))
        return isVideoName(name) ? own : QStringLiteral("mkv");
    if (type.name().startsWith(audio))
        return isAudioName(name) ? own : QStringLiteral("mka");
    return {};
}

} // namespace

bool isVideoName(const QByteArray &uri)
{
    return isOfKind(uri, video);
}

bool isAudioName(const QByteArray &uri)
{
    return isOfKind(uri, audio);
}

QString suffixOfName(const QByteArray &uri)
{
    const QByteArray name = QUrl::fromEncoded(uri).path(QUrl::FullyEncoded).toUtf8();
    if (!isVideoName(name) && !isAudioName(name))
        return {};
    return QString::fromLatin1(name.mid(name.lastIndexOf('.') + 1).toLower());
}

QString suffixOfContent(const QString &path)
{
    const QMimeType type = database().mimeTypeForFile(path, QMimeDatabase::MatchContent);
    if (const QString suffix = suffixOfKind(type); !suffix.isEmpty())
        return suffix;
    const bool isKnown = type.inherits(QStringLiteral("text/plain"))
        || type.name().startsWith(QLatin1String("image/"))
        || type.name() == QLatin1String("application/pdf")
        || type.inherits(QStringLiteral("application/zip"));
    return isKnown ? QString() : QStringLiteral("mkv");
}

QString suffixOfType(const QString &contentType)
{
    return suffixOfKind(
        database().mimeTypeForName(contentType.section(u';', 0, 0).trimmed().toLower()));
}

// Each stream is named on a page of its own, and those pages are the first.
bool isFilmInOgg(const QString &path)
{
    constexpr qint64 namesEnd = 1024;
    QFile file(path);
    const QByteArray start = file.open(QFile::ReadOnly) ? file.read(namesEnd) : QByteArray();
    const auto names = [&start](const char *stream) { return start.contains(stream); };
    return start.startsWith("OggS") && (names("\x80theora") || names("OVP80") || names("\1video"));
}

QString commentOf(const QString &path)
{
    return database().mimeTypeForFile(path).comment();
}

} // namespace MediaPlayer
