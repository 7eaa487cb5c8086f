#ifndef MEDIAFILES_H
#define MEDIAFILES_H

#include <QtCore/QByteArray>
#include <QtCore/QList>

struct MediaShape {
    bool quick = false; ///< one of the chosen third
    bool toDamage = false; ///< see the test of bad media
    double seconds = 3;
    int fps = 10;
    const char *format = "I420";
    int width = 160;
    int height = 120;
    int rate = 44100;
    const char *sound = "channels=2";
    double seekSlack = 1.1; ///< s; how far before its target a seek may land
    bool indexed = true; ///< a bare stream has no length and cannot be sought in
};

/// A media file to make; some have names that a URI cannot hold as they are. Its picture, if it has
/// one, is red and green over blue and white.
struct MediaFile {
    const char *name;
    const char *muxer; ///< it and the streams as for gst-launch-1.0
    const char *streams;
    MediaShape shape = {};
};

extern const QList<MediaFile> mediaFiles;

inline const QByteArray noEncoder = "no encoder, or one built without this format: ";

/// Makes the file in MEDIA_DIR. Returns nothing, or what went wrong.
QByteArray makeMediaFile(const MediaFile &file);

#endif
