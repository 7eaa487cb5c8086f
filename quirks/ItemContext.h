#ifndef ITEMCONTEXT_H
#define ITEMCONTEXT_H

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtGui/QWindow>

#include <atomic>

class QOpenGLContext;
class QQuickItem;

// The video item reports itself initialised each time it enters a window.
//
// Without it: a player that is hidden and shown again is rewound and prerolled anew.
// Where: GStreamer's GstGLQt6VideoItem, seen with 1.22.0, 1.26.2 and 1.28.8. It forgets its GL
// context when it leaves a window, and tells nobody whether the next window has the same one.
// Places in one window, and the quick widgets of one top-level window, share a context as long as
// their scene graph lives; so do windows in Qt's basic render loop, but there too a player starts
// anew in another window. Needed: on every version that reports more often than the GL context
// changes; where it does not, the context is another one at each report. Can go: when the item
// reports only a new GL context. Test: lifecycle_test, survivesItsControl.

/// Compares the GL contexts under which a video item reports itself initialised. The item's child.
class ItemContext : public QObject
{
    Q_OBJECT

public:
    explicit ItemContext(QQuickItem *videoItem);

    /// [gui] Whether the item is in the same top-level window as at the last call, and its last
    /// report came under the same GL context.
    bool kept();

private Q_SLOTS:
    void report(); // on the thread that draws, with the GL context current

private:
    // Only compared. Null again when the context goes, since the next may have its address.
    std::atomic<QOpenGLContext *> m_reported = nullptr;
    std::atomic<QOpenGLContext *> m_atLastCall = nullptr;
    QPointer<QWindow> m_windowAtLastCall;
    QMetaObject::Connection m_end; // where reports come; the GUI thread waits meanwhile
};

#endif
