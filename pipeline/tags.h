#ifndef TAGS_H
#define TAGS_H

#include "pipeline/messageWatch.h"

/// [any] Publishes what a message of tags says. A picture among them is decoded on a thread of Qt's
/// pool, and follows when it is there.
void publishTags(MessageWatch &watch, GstMessage *message);

#endif
