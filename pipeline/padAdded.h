#ifndef PADADDED_H
#define PADADDED_H

#include <gst/gst.h>

class MediaPlayerView;

/// "pad-added" of a pipeline's source: links a decoded stream to the view's video or audio chain.
/// Runs on a streaming thread; takes no lock, since a state change of the view joins that thread.
void pad_added_handler(GstElement *src, GstPad *newPad, MediaPlayerView *view);

#endif
