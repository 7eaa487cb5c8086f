#ifndef CURRENTCONTEXT_H
#define CURRENTCONTEXT_H

class QQuickItem;

// The video item trusts the GL context that GStreamer has noted for the thread.
//
// Without it: an item that is initialised on a thread where another one has drawn takes over what
// is noted there: the GL context of a window that is gone, or freed memory. Its pipeline does not
// start, or the process crashes. Such threads are the GUI thread, which draws quick widgets and in
// Qt's basic render loop all windows. An item that enters a window again also wraps its GL context
// anew and forgets the wrapper that it had: 27 KB each time.
// Where: GStreamer's GstGLQt6VideoItem and GstGL, seen with 1.22.0, 1.26.2 and 1.28.8; no ticket
// known. gst_gl_context_activate() notes a bare pointer for the thread, updatePaintNode() leaves it
// there, and gst_qml6_get_gl_wrapcontext() takes it for the window's context.
// Needed: where a frame leaves a context noted. Looked at in each frame; where nothing is left,
// nothing is done.
// Can go: when the item compares what is noted with the window's context.
// Test: quirks_test and quirks_test_basic, drawsAfterOthersOnItsThread.

/// [gui] Keeps GStreamer's note of each thread's GL context right in all windows that the item
/// enters. Call before the item enters its first window.
void keepCurrentContext(QQuickItem *videoItem);

#endif
