#ifndef TAGS_H
#define TAGS_H

#include "pipeline/overheard.h"

/// [any] Passes on what a message of tags says. A picture among them is decoded on a thread of Qt's
/// pool, and follows when it is there.
void tellOfTags(Overheard &overheard, GstMessage *message);

#endif
