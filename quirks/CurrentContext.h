#ifndef CURRENTCONTEXT_H
#define CURRENTCONTEXT_H

class QQuickItem;

// The video item trusts the GL context that GStreamer has noted for the thread.
//
// Without it: an item that is initialised on a thread where another one has drawn takes over that
// one's GL context, which belongs to another window or is freed memory. Its pipeline does not
// start, and whoever takes it down waits for ever. Threads that draw for more than one window are
// the GUI thread with quick widgets and with Qt's basic render loop.
// And an item that enters a window again wraps the window's context anew and forgets the wrapper
// that it had: 27 KB each time.
// Where: GStreamer's GstGLQt6VideoItem and GstGL, 1.22 to 1.28: gst_gl_context_activate() notes a
// bare pointer for the thread, updatePaintNode() leaves it there, and gst_qml6_get_gl_wrapcontext()
// takes what it finds there for the window's context.
// Needed: where a frame leaves a context noted that was not noted before it. Looked at in each
// frame; where nothing is left, nothing is done.
// Can go: when the item compares what is noted with the window's context.
// Test: lifecycle_test, fiftyCyclesLeakNothing; movesToAnotherWindowAndLoadsWhileParked.

/// [gui] Keeps GStreamer's note of each thread's GL context right in all windows that the item
/// enters. Call before the item enters its first window.
void keepCurrentContext(QQuickItem *videoItem);

#endif
