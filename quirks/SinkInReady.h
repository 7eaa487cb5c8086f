#ifndef SINKINREADY_H
#define SINKINREADY_H

#include <gst/gst.h>

// The video sink leaks references each time it goes from NULL to READY.
//
// Without it: each pass through NULL, so each stop and each end of stream, leaks references on the
// GStreamer display and two GL contexts, which then outlive every player, with their threads.
// Where: GStreamer's qml6glsink, seen with 1.22.0, 1.26.2 and 1.28.8; no ticket known.
// change_state() overwrites its three members at NULL to READY; only finalize() releases them.
// Needed: assumed on every version, since nothing is wrong with it where the sink releases them.
// The sink stays in READY while its pipeline is in NULL, and elements that are raised again find
// the display and GL context that they had. Can go: when the sink releases what it holds at READY
// to NULL. Test: loading_test, in whose end the leaks tracer finds the GL context.

/// [any] Takes a pipeline to NULL, all but the sink: that stays in READY if it is in READY
/// or above.
GstStateChangeReturn toNullWithoutSink(GstElement *pipeline, GstElement *videoSink);

#endif
