#include "Memory.h"

#include <algorithm>

constexpr int recentFiles = 10;
constexpr int placesKept = 100;
constexpr qint64 nearAnEnd = 3000; // of the start and of the end; milliseconds

static const QString recentKey = QStringLiteral("recent");
static const QString placesKey = QStringLiteral("places");

QStringList Memory::recent() const
{
    return settings.value(recentKey).toStringList();
}

void Memory::addRecent(const QUrl &media)
{
    QStringList list = recent();
    list.removeAll(media.toString());
    list.prepend(media.toString());
    settings.setValue(recentKey, QStringList(list.mid(0, recentFiles)));
}

// One line for each medium, the last one first: its place and its address.
static QString addressIn(const QString &line)
{
    return line.section(QLatin1Char(' '), 1);
}

qint64 Memory::placeIn(const QUrl &media) const
{
    for (const QString &line : settings.value(placesKey).toStringList()) {
        if (addressIn(line) == media.toString())
            return line.section(QLatin1Char(' '), 0, 0).toLongLong();
    }
    return 0;
}

void Memory::leave(const QUrl &media, qint64 position, qint64 duration)
{
    const QString address = media.toString();
    QStringList lines = settings.value(placesKey).toStringList();
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [&](const QString &line) { return addressIn(line) == address; }),
                lines.end());
    if (position > nearAnEnd && position + nearAnEnd < duration)
        lines.prepend(QString::number(position) + QLatin1Char(' ') + address);
    settings.setValue(placesKey, QStringList(lines.mid(0, placesKept)));
}
