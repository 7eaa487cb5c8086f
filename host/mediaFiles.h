#ifndef MEDIAFILES_H
#define MEDIAFILES_H

#include <QtCore/QList>
#include <QtCore/QStringList>
#include <QtCore/QUrl>

/// "*.mp4", "*.flac" ...: every name that stands for sound, film or a play list.
QStringList mediaPatterns();

/// The filters of a file dialog: media, and all files.
QStringList dialogFilters();

/// What a user means who opens these: a folder stands for the media in it, in the order in which
/// people count ("2" before "10"), a play list for its entries, anything else for itself.
QList<QUrl> mediaAt(const QList<QUrl> &opened);

/// A file's path or an address, as a user types it.
QUrl urlOf(const QString &typed);

/// What a file or an address is called when it has no title.
QString nameOf(const QUrl &media);

#endif
