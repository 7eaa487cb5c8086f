#ifndef CHAIN_H
#define CHAIN_H

#include <gst/gst.h>

#include <array>
#include <string>

class MediaPlayerView;

/// What a chain is asked about.
struct StreamFormat {
    GstCaps *format;
    GstElement *sink; ///< the chain's
    bool refused; ///< by the chain as it stands
    bool turned; ///< the picture does not stand upright, as its tags say
};

/// The elements that one kind of decoded stream goes through, the sink last. Null where one could
/// not be made; without the first there is no chain.
struct Chain {
    std::array<GstElement *, 3> elements;
    const char *rawType; ///< streams of this type can be filtered for the chain
    const char *filterName; ///< in the pipeline, while it is there
    const char *turnerName; ///< of the filter's element that turns pictures

    /// What has to go in front of the chain, as a pipeline description; empty for nothing.
    std::string (*filterFor)(const StreamFormat &);
};

// All of this runs on the streaming threads of `pipeline` and takes no lock: a state change of the
// view joins those threads. The chains of the view's members belong to one pipeline as long as its
// streaming threads run.

Chain audioChainOf(MediaPlayerView *view);
Chain videoChainOf(MediaPlayerView *view);

/// Whether the chain exists and no stream flows into it.
bool isFree(GstElement *pipeline, const Chain &chain);

/// Adds the chain if it is absent and links `stream`; the chain must be free. Where the stream
/// needs it, now or later, a filter goes between the two: it converts a format that the chain
/// refuses, and turns a picture that lies on its side. The next stream is first offered without a
/// filter.
void linkStream(GstElement *pipeline, const Chain &chain, GstPad *stream, const char *type);

/// Removes a chain that no stream flows into: the pipeline would wait for its sink for ever. The
/// elements are then in NULL and can be added again.
void leaveIfFree(GstElement *pipeline, const Chain &chain);

#endif
