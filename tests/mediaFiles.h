#ifndef MEDIAFILES_H
#define MEDIAFILES_H

#include <QtCore/QByteArray>
#include <QtCore/QList>

/// A media file to make, and what a player must make of it. Its picture, if it has one, is red and
/// green over blue and white.
struct MediaFile {
    const char *name;
    /// For gst-launch-1.0. VIDEO and AUDIO stand for raw streams of the shape below, FILE for
    /// where it goes, KEY for the number of frames in a second.
    const char *line;
    bool quick = false; ///< one of the chosen third
    bool sound = true;
    bool picture = true;
    double seconds = 3;
    double fps = 10;
    const char *video = "format=I420";
    int width = 160;
    int height = 120;
    const char *audio = "rate=44100,channels=2";
    const char *decoder = nullptr; ///< where the line's encoders do not tell what plays the file
    bool firstFrameOnly = false; ///< too heavy to be played here
    bool indexed = true; ///< a bare stream has no length and cannot be sought in
    double seekSlack = 1.1; ///< s; how far before its target a seek may land
    double endingFrom = 0; ///< s; where it is too long to be played to its end
};

extern const QList<MediaFile> mediaFiles;

/// Makes the file in MEDIA_DIR unless it is there. Returns what is missing or went wrong, or
/// nothing; `skip` tells a missing encoder or decoder from the rest.
QByteArray makeMediaFile(const MediaFile &file, bool &skip);

#endif
