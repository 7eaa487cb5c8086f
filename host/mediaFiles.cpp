#include "mediaFiles.h"

#include <QtCore/QCollator>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeDatabase>

#include <algorithm>

static bool isPlayList(const QString &name)
{
    return name.endsWith(QLatin1String(".m3u"), Qt::CaseInsensitive)
        || name.endsWith(QLatin1String(".m3u8"), Qt::CaseInsensitive);
}

QStringList mediaPatterns()
{
    static const QStringList patterns = [] {
        // Of these the MIME database has other ideas. The client finds by their content what they
        // are.
        QStringList found {QStringLiteral("*.ts"),   QStringLiteral("*.m3u"),
                           QStringLiteral("*.m3u8"), QStringLiteral("*.asf"),
                           QStringLiteral("*.rm"),   QStringLiteral("*.rmvb"),
                           QStringLiteral("*.mxf"),  QStringLiteral("*.ogx")};
        for (const QMimeType &type : QMimeDatabase().allMimeTypes()) {
            if (type.name().startsWith(QLatin1String("video/"))
                || type.name().startsWith(QLatin1String("audio/")))
                found += type.globPatterns();
        }
        found.sort();
        found.removeDuplicates();
        return found;
    }();
    return patterns;
}

QStringList dialogFilters()
{
    return {QCoreApplication::translate("mediaFiles", "Films and sound (%1)")
                .arg(mediaPatterns().join(QLatin1Char(' '))),
            QCoreApplication::translate("mediaFiles", "All files (*)")};
}

static QList<QUrl> mediaInFolder(const QString &folder)
{
    QStringList files;
    QDirIterator walk(folder, mediaPatterns(), QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString file = walk.next();
        if (!isPlayList(file))
            files.append(file);
    }
    // The C locale does not count.
    const QLocale locale = QLocale::system();
    QCollator order(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    order.setNumericMode(true);
    std::sort(files.begin(), files.end(), order);
    QList<QUrl> urls;
    for (const QString &file : std::as_const(files))
        urls.append(QUrl::fromLocalFile(file));
    return urls;
}

// Entries are addresses, or paths from where the list is.
static QList<QUrl> mediaInPlayList(const QString &file)
{
    QFile list(file);
    if (!list.open(QFile::ReadOnly))
        return {QUrl::fromLocalFile(file)}; // which tells why
    const QString text = QString::fromUtf8(list.readAll());
    if (text.contains(QLatin1String("#EXT-X-")))
        return {QUrl::fromLocalFile(file)}; // the parts of one stream
    const QDir folder = QFileInfo(file).absoluteDir();
    QList<QUrl> urls;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const QString entry = line.trimmed();
        if (entry.isEmpty() || entry.startsWith(QLatin1Char('#')))
            continue;
        if (entry.contains(QLatin1String("://")))
            urls.append(QUrl(entry));
        else
            urls.append(QUrl::fromLocalFile(QDir::cleanPath(folder.absoluteFilePath(entry))));
    }
    return urls;
}

QList<QUrl> mediaAt(const QList<QUrl> &opened)
{
    QList<QUrl> media;
    for (const QUrl &url : opened) {
        const QString path = url.toLocalFile();
        if (path.isEmpty())
            media.append(url);
        else if (QFileInfo(path).isDir())
            media += mediaInFolder(path);
        else if (isPlayList(path))
            media += mediaInPlayList(path);
        else
            media.append(url);
    }
    return media;
}

QUrl urlOf(const QString &typed)
{
    const QFileInfo file(typed); // with every character that a name may have
    if (file.exists())
        return QUrl::fromLocalFile(file.absoluteFilePath());
    return QUrl::fromUserInput(typed, QDir::currentPath(), QUrl::AssumeLocalFile);
}

QString nameOf(const QUrl &media)
{
    const QString name = media.fileName(QUrl::FullyDecoded);
    return name.isEmpty() ? media.toDisplayString() : name;
}
