#ifndef LOSTERROR_H
#define LOSTERROR_H

#include <gst/gst.h>

// decodebin drops the error of a demuxer that fails while it is being activated.
//
// Without it: a truncated file never prerolls, and nobody says why.
// Where: GStreamer's decodebin, 1.22 to 1.28.
// Needed: where a preroll has timed out while a demuxer has stopped pulling the file without having
// found a stream. Looked at each time.
// Can go: when decodebin passes the error on.
// Test: badMedia_test, the row of the truncated file.

/// [any thread] Posts an error on the pipeline's bus if one of its demuxers has given up.
void postLostError(GstElement *pipeline);

#endif
