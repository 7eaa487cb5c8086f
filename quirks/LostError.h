#ifndef LOSTERROR_H
#define LOSTERROR_H

#include <gst/gst.h>

// decodebin drops the error of a demuxer that fails while it is being activated.
//
// Without it: a truncated file never prerolls, and nobody says why.
// Where: GStreamer's decodebin, seen with 1.22.0, 1.26.2 and 1.28.8; no ticket known. The two race:
// about one preroll of a cut file in ten is lost.
// Needed: where a preroll has timed out while a demuxer has stopped pulling the file without having
// found a stream. Looked at each time.
// Can go: when decodebin passes the error on.
// Test: quirks_test, tellsOfADemuxerThatGaveUp.

/// [any] Posts an error on the pipeline's bus if one of its demuxers has given up.
void postLostError(GstElement *pipeline);

#endif
