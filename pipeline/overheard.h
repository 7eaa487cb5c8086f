#ifndef OVERHEARD_H
#define OVERHEARD_H

#include "view/Relay.h"

#include <array>

/// What the messages of one built pipeline are passed on with.
struct Overheard {
    QSharedPointer<Relay> relay;
    const GstElement *media;
    std::array<QVariantMap, 3>
        said {}; ///< by tags: of sound, of video, of all; by the relay's mutex
    std::atomic<GstBuffer *> cover = nullptr; ///< the picture decoded last; one reference

    ~Overheard() { replaceCover(nullptr); }

    /// True where it is another one.
    bool replaceCover(GstBuffer *picture);
};

/// Has `relay` told, as long as `pipeline` lives, what its messages say beyond what the record has
/// room for. That happens on the thread that posts a message, before anybody can take it off the
/// bus, and takes neither of the view's locks. [gui]
void overhear(GstElement *pipeline, const QSharedPointer<Relay> &relay);

#endif
