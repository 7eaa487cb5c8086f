#ifndef SINKINREADY_H
#define SINKINREADY_H

#include <gst/gst.h>

// The video sink forgets references each time it goes from NULL to READY.
//
// Without it: each pass through NULL, so each stop and each end of stream, leaks references on the
// GStreamer display and two GL contexts, which then outlive every player, with their threads.
// Where: GStreamer's qml6glsink, 1.22 to 1.28: change_state() overwrites its three members at
// NULL to READY; only finalize() releases them.
// Needed: never, where the sink does not make this transition twice; so it stays in READY when its
// pipeline goes to NULL. The same on every version.
// Can go: when the sink releases what it holds at READY to NULL.
// Test: lifecycle_test, stopsLeakNothing; the leaks tracer in every test.

/// [any thread] Takes a pipeline to NULL, all but the sink: that stays in READY if it is in READY
/// or above.
GstStateChangeReturn toNullWithoutSink(GstElement *pipeline, GstElement *videoSink);

#endif
