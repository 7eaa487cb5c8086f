#ifndef SINKFIRST_H
#define SINKFIRST_H

#include <gst/gst.h>

// The elements before the video sink open a display of their own unless the sink is in READY first.
//
// Without it: the picture stays black, since the scene shows nothing that was drawn with another
// display; and each film opens a display.
// Where: GStreamer's GL elements, documented at qml6glsink: elements ask their neighbours for the
// display and the GL context when they go to READY, and only a sink in READY answers.
// Needed: for a sink that joins a pipeline above READY, on every version.
// Can go: when GL elements accept the scene's display later.
// Test: media_test, every row with a picture.

/// [streaming] Takes a sink that is in NULL to READY.
void raiseSinkFirst(GstElement *sink);

#endif
