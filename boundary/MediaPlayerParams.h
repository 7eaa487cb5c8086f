/*
 * The record through which a host and one media player talk (plain C99 and C++).
 *
 * The host allocates one record per player, sets `view` to null, and registers its address with
 * BasicWidget::SysNativeControlSetSettings("RegisterParameter", record). From then on the plug-in
 * reads and writes the record in place, so it must stay at its address, readable and writable,
 * until its player has been destroyed (`view` reads null again).
 *
 * One command:
 *   1. write the operands and `command`;
 *   2. raise `execute` (store 1 with release ordering);
 *   3. wait until `execute` reads 0 (load with acquire ordering): `done` and `error` hold the
 *      answer.
 * The command runs on the host's GUI thread, so the GUI thread must go on running its event loop.
 *
 * `state`, `position` and `duration` are published without any request, about every 150 ms, from a
 * thread of the player: read them as single atomic values (relaxed ordering is enough).
 *
 * Flags are one signed byte: 0 is false, everything else is true; the plug-in writes 0 and 1.
 * Times are nanoseconds. States are the numbers of enum MediaPlayerState. Byte order is
 * little-endian, every field is naturally aligned, and nothing behind `playState` (offset 180 and
 * on) is ever touched, so a host may append fields of its own.
 */
#ifndef MEDIAPLAYERPARAMS_H
#define MEDIAPLAYERPARAMS_H

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
class MediaPlayerView;
#else
#include <stddef.h>
#include <stdint.h>
typedef struct MediaPlayerView MediaPlayerView;
#endif

/* Command codes. Any other number does nothing and is answered as done. */
enum MediaPlayerCommand {
    MediaPlayerCommandLoad = 0, /* fileName; the only command that can answer error = 1 */
    MediaPlayerCommandVolume = 1, /* volume */
    MediaPlayerCommandPlayState = 2, /* volume, playState; NULL rewinds to a paused start */
    MediaPlayerCommandMute = 3, /* mute */
    MediaPlayerCommandSeek = 4, /* seekPosition; goes to the key frame before */
    MediaPlayerCommandRebind = 7, /* none; answered by the next registration, see docs */
    MediaPlayerCommandTransform = 9, /* transformBit0, transformBit1, transformParam */
    MediaPlayerCommandCrop = 10, /* cropLeft, cropTop, cropRight, cropBottom */
    MediaPlayerCommandOpacity = 11, /* opacity */
    MediaPlayerCommandKeepAspectRatio = 12 /* keepAspectRatio */
};

/* The numbers of GStreamer's GstState. */
enum MediaPlayerState {
    MediaPlayerStateVoidPending = 0,
    MediaPlayerStateNull = 1,
    MediaPlayerStateReady = 2,
    MediaPlayerStatePaused = 3,
    MediaPlayerStatePlaying = 4
};

/* What the scene makes of the sum transformBit0 + 2 * transformBit1. */
enum MediaPlayerFlip {
    MediaPlayerFlipNone = 0,
    MediaPlayerFlipHorizontal = 1, /* left and right change places */
    MediaPlayerFlipVertical = 2 /* top and bottom change places */
};

/* Size of fileName in bytes, its NUL included. */
enum { MediaPlayerFileNameSize = 81 };

typedef struct MediaPlayerParams {
    int8_t busy; /* host raises it as it likes; lowered with every answer and error */
    int8_t done; /* 1: the command was carried out; 0: loading or the media failed */
    int8_t error; /* 1: loading or the media failed */
    int8_t execute; /* host raises it to request `command`; lowered last */
    int8_t reserved4[4]; /* never accessed */
    MediaPlayerView *view; /* the player behind this record; host writes null once, before
                                    the first registration */
    int32_t command; /* enum MediaPlayerCommand */
    int8_t reserved20[4]; /* never accessed */
    int8_t pauseOnSave; /* parking pauses a player whose `state` is playing */
    int8_t resumeOnRestore; /* restoring resumes what parking paused */
    int8_t transformBit0; /* mirrors left to right (bit 0) */
    int8_t transformBit1; /* mirrors top to bottom (bit 0) */
    int32_t transformParam; /* clockwise rotation about the picture's centre, degrees */
    double volume; /* linear, 1.0 leaves the level as it is, 0.0 to 10.0 take effect */
    int64_t duration; /* length of the media, ns; 0 while unknown */
    int64_t position; /* playback position, ns; -1 where it cannot be told */
    int8_t mute; /* non-zero: silent */
    int8_t keepAspectRatio; /* non-zero: bars instead of a stretched picture */
    char fileName[MediaPlayerFileNameSize]; /* media URI, UTF-8, at most 80 bytes and a NUL;
                                               rewritten when an unsupported file is refused and
                                               another one stays loaded */
    int8_t reserved139; /* never accessed */
    int32_t state; /* enum MediaPlayerState of the current media */
    int8_t reserved144[4]; /* never accessed */
    int8_t attached; /* 1: the picture is in the host's item tree; 0: it is parked */
    int8_t reserved149; /* never accessed */
    int16_t cropLeft; /* pixels pushed past the left edge; negative leaves a border */
    int16_t cropTop; /* the same at the top */
    int16_t cropRight; /* the same on the right */
    int16_t cropBottom; /* the same at the bottom */
    int8_t reserved158[2]; /* never accessed */
    double opacity; /* of the picture, 0.0 to 1.0 */
    int64_t seekPosition; /* ns from the start */
    int32_t playState; /* enum MediaPlayerState to go to */
} MediaPlayerParams;

#ifdef __cplusplus
#define MEDIAPLAYER_FIELD(field, offset, size)                                                     \
    static_assert(offsetof(MediaPlayerParams, field) == (offset)                                   \
                      && sizeof(MediaPlayerParams::field) == (size),                               \
                  #field " has moved: the record's layout is fixed")
MEDIAPLAYER_FIELD(busy, 0, 1);
MEDIAPLAYER_FIELD(done, 1, 1);
MEDIAPLAYER_FIELD(error, 2, 1);
MEDIAPLAYER_FIELD(execute, 3, 1);
MEDIAPLAYER_FIELD(view, 8, 8);
MEDIAPLAYER_FIELD(command, 16, 4);
MEDIAPLAYER_FIELD(pauseOnSave, 24, 1);
MEDIAPLAYER_FIELD(resumeOnRestore, 25, 1);
MEDIAPLAYER_FIELD(transformBit0, 26, 1);
MEDIAPLAYER_FIELD(transformBit1, 27, 1);
MEDIAPLAYER_FIELD(transformParam, 28, 4);
MEDIAPLAYER_FIELD(volume, 32, 8);
MEDIAPLAYER_FIELD(duration, 40, 8);
MEDIAPLAYER_FIELD(position, 48, 8);
MEDIAPLAYER_FIELD(mute, 56, 1);
MEDIAPLAYER_FIELD(keepAspectRatio, 57, 1);
MEDIAPLAYER_FIELD(fileName, 58, 81);
MEDIAPLAYER_FIELD(state, 140, 4);
MEDIAPLAYER_FIELD(attached, 148, 1);
MEDIAPLAYER_FIELD(cropLeft, 150, 2);
MEDIAPLAYER_FIELD(cropTop, 152, 2);
MEDIAPLAYER_FIELD(cropRight, 154, 2);
MEDIAPLAYER_FIELD(cropBottom, 156, 2);
MEDIAPLAYER_FIELD(opacity, 160, 8);
MEDIAPLAYER_FIELD(seekPosition, 168, 8);
MEDIAPLAYER_FIELD(playState, 176, 4);
#undef MEDIAPLAYER_FIELD
#endif

#endif
