#ifndef PADADDED_H
#define PADADDED_H

#include <gst/gst.h>

class MediaPlayerView;

// Signals of a pipeline's source. They run on its streaming threads and take no lock, since a
// state change of the view joins those threads.

/// "pad-added": links a decoded stream to the view's video or audio chain.
void pad_added_handler(GstElement *src, GstPad *newPad, MediaPlayerView *view);

/// "no-more-pads": a chain that got no stream leaves the pipeline.
void no_more_pads_handler(GstElement *src, MediaPlayerView *view);

#endif
