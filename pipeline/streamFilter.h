#ifndef STREAMFILTER_H
#define STREAMFILTER_H

#include "pipeline/GstHandle.h"
#include "pipeline/chain.h"

// What stands between a stream and its chain, where the stream needs something there: one bin, made
// from the description that the chain gives. Streaming threads, as chain.h says.

/// Where the next stream goes in: the filter's pad, or the chain's own. Null without a chain.
ObjectRef<GstPad> entryOf(GstElement *pipeline, const Chain &chain);

/// Puts in what the stream needs as far as is known now, and watches the stream: its format and its
/// tags, the first and every later one, may ask for more. What cannot be filtered goes on as it is,
/// or stays unlinked where the chain refuses it.
void filterStream(GstElement *pipeline, const Chain &chain, GstPad *stream);

void takeFilterOut(GstElement *pipeline, const Chain &chain);

/// Takes an element out with its links. It stays locked while it is outside, so that a state
/// change of the pipeline that has just met it cannot raise it again.
void takeOut(GstElement *pipeline, GstElement *element);

#endif
