#ifndef MESSAGEWATCH_H
#define MESSAGEWATCH_H

#include "pipeline/Relay.h"

#include <array>

/// Data of the handler of one built pipeline's messages.
struct MessageWatch {
    QSharedPointer<Relay> relay;
    const GstElement *media;
    std::array<QVariantMap, 3>
        said {}; ///< by tags: of sound, of video, of all; by the relay's mutex
    std::atomic<GstBuffer *> cover = nullptr; ///< the picture decoded last; one reference

    ~MessageWatch() { replaceCover(nullptr); }

    /// True where it is another one.
    bool replaceCover(GstBuffer *picture);
};

/// [gui] Publishes through `relay`, as long as `pipeline` lives, what its messages say beyond the
/// record's fields. The handler runs on the thread that posts a message, before anybody can take it
/// off the bus, and takes neither of the view's locks.
void watchMessages(GstElement *pipeline, const QSharedPointer<Relay> &relay);

#endif
