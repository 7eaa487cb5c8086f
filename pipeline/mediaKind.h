#ifndef MEDIAKIND_H
#define MEDIAKIND_H

#include <QtCore/QString>

// What can be known of a media from its URI, before anything is opened. [gui]

enum class MediaKind { Video, Audio, Unsupported };

/// From the name alone: the MIME database is asked about a URI, never about an existing path.
MediaKind mediaKindOf(const QString &uri);

/// Whether a local file's name stands for a FIFO, a socket or a device, which can block whoever
/// opens it for ever. What does not exist, and a directory, is left to GStreamer, which reports
/// it. Looks at the file system: a network mount that is dead holds the caller.
bool namesWhatCanBlock(const char *uri);

#endif
