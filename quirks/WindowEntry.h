#ifndef WINDOWENTRY_H
#define WINDOWENTRY_H

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtQuick/QQuickWindow>

#include <atomic>

class QQuickItem;

// The video item leaves a render job in each window that it enters, and forgets too much when it
// leaves one.
//
// Without it: a window that is shown the next time runs the job, also after the item is gone: the
// process crashes. And a film that prerolls while the player is hidden makes a new GL context, of
// 10 MB and a thread, and the item never releases the one that it had. Where: GStreamer's
// GstGLQt6VideoItem, seen with 1.22.0, 1.26.2 and 1.28.8; no ticket known. handleWindowChanged()
// schedules a job that holds a bare pointer, and nothing cancels it when the item leaves the window
// or is deleted. It also clears what initWinSys() takes for the whole state. Needed: where the item
// connects its own windowChanged() to its own slot handleWindowChanged(); disconnecting the two
// tells. Any other version of the item is left alone. Can go: when the item guards the pointer, and
// makes one GL context only. Test: quirks_test and quirks_test_basic,
// itemGoesWhileAnEarlierWindowIsHidden and prerollsWhileHidden.

/// Initialises the item in a window by a connection, which ends with the item or when it leaves.
/// The item's child.
class WindowEntry : public QObject
{
public:
    /// [gui] Before the item enters its first window.
    explicit WindowEntry(QQuickItem *videoItem);

    /// [gui] Whether the item has been initialised in the window that it is in. Its own property
    /// speaks of an earlier window until then.
    bool isInitialized() const;

private:
    void enter(QQuickWindow *window);
    void beforeFrame(); // [render] the GUI thread waits meanwhile

    QPointer<QQuickWindow> m_window;
    std::atomic<bool> m_entering = false; // no frame of this window has begun
};

#endif
