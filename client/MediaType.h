#ifndef MEDIAPLAYER_MEDIATYPE_H
#define MEDIAPLAYER_MEDIATYPE_H

#include <QtCore/QString>

// What the plug-in takes a name for, and which names to give what it would refuse. Any thread.

namespace MediaPlayer
{

/// As the plug-in decides it: by the end of the address alone.
bool isVideoName(const QByteArray &uri);
bool isAudioName(const QByteArray &uri);

/// The suffix of an address that the plug-in knows, of which it may have more behind it
/// ("film.mp4?token=1"); else empty.
QString suffixOfName(const QByteArray &uri);

/// A suffix that the plug-in knows for a file of any name, by its content: also for what nobody
/// recognizes, which is left to GStreamer. Empty if it is known to be neither film nor sound.
QString suffixOfContent(const QString &path);

/// The same for what a server calls its content; empty if that tells nothing.
QString suffixOfType(const QString &contentType);

/// Whether an Ogg file, whose name says "sound" of films too, has a picture.
bool isFilmInOgg(const QString &path);

/// What a file is, for a user: "plain text document".
QString commentOf(const QString &path);

} // namespace MediaPlayer

#endif
