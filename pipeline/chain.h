#ifndef CHAIN_H
#define CHAIN_H

#include <gst/gst.h>

#include <array>

class MediaPlayerView;

/// The elements that one kind of decoded stream goes through, the sink last. Null where one could
/// not be made; without the first there is no chain.
struct Chain {
    std::array<GstElement *, 3> elements;
    const char *rawType; ///< streams of this type that the chain refuses are converted for it
    const char *converter; ///< by what: a pipeline description
    const char *converterName; ///< in the pipeline, while it is there
};

// All of this runs on the streaming threads of `pipeline` and takes no lock: a state change of the
// view joins those threads. The chains of the view's members belong to one pipeline as long as its
// streaming threads run.

Chain audioChainOf(MediaPlayerView *view);
Chain videoChainOf(MediaPlayerView *view);

/// Whether the chain exists and no stream flows into it.
bool isFree(GstElement *pipeline, const Chain &chain);

/// Lets a free chain join the pipeline, unless an earlier stream did, and gives it `stream`. Where
/// the chain refuses the format, now or later, a converter goes between the two. The next stream
/// that the chain gets is first offered without one.
void linkStream(GstElement *pipeline, const Chain &chain, GstPad *stream, const char *type);

/// Takes a chain that no stream flows into out of the pipeline, which would wait for its sink for
/// ever. Its elements are then in NULL and can join again.
void leaveIfFree(GstElement *pipeline, const Chain &chain);

#endif
