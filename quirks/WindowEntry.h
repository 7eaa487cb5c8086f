#ifndef WINDOWENTRY_H
#define WINDOWENTRY_H

class QQuickItem;

// The video item leaves a render job in each window that it enters.
//
// Without it: the window runs the job when it is shown the next time, also after the item is gone:
// the process crashes.
// Where: GStreamer's GstGLQt6VideoItem, 1.22 to 1.28: handleWindowChanged() schedules a job that
// holds a bare pointer, and nothing cancels it when the item leaves the window or is deleted.
// Needed: where the item connects its own windowChanged() to its own slot handleWindowChanged();
// disconnecting the two tells. Any other version of the item is left alone.
// Can go: when the item guards the pointer.
// Test: quirks_test, itemGoesWhileAnEarlierWindowIsHidden.

/// [gui] From now on the item is initialised in a window by a connection, which ends with the item
/// or when it leaves. Call before the item enters its first window.
void enterWindowsWithoutJobs(QQuickItem *videoItem);

#endif
