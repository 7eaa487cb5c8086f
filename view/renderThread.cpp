#include "view/renderThread.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <gst/gl/gl.h>

namespace
{

// GStreamer notes for each thread, by a bare pointer, the GL context that was used there last. A
// video item that draws leaves its own there, and the next item that comes up on this thread takes
// it: for another window's, whose context may be gone, or is freed memory by then. Its pipeline
// does not start, and whoever takes it down waits for ever. So the note is wiped while it still
// names a living context: the GUI thread, which deletes items, waits during synchronization.
void forgetCurrentContext()
{
    if (GstGLContext *context = gst_gl_context_get_current())
        gst_gl_context_activate(context, FALSE);
}

} // namespace

void keepRenderThreadsClean(QQuickItem *videoItem)
{
    QObject::connect(videoItem, &QQuickItem::windowChanged, videoItem,
                     [videoItem, drawn = QMetaObject::Connection()](QQuickWindow *window) mutable {
                         QObject::disconnect(drawn);
                         if (window)
                             drawn = QObject::connect(window, &QQuickWindow::afterSynchronizing,
                                                      videoItem, forgetCurrentContext,
                                                      Qt::DirectConnection);
                     });
}

// GStreamer's item hands each window that it comes into a render job with a bare pointer to
// itself. The window runs its jobs when it synchronizes or ends, before it deletes its children.
void outliveRenderJob(QQuickItem *videoItem, QQuickWindow *window)
{
    videoItem->setParentItem(nullptr);
    videoItem->setParent(window);
    QObject::connect(window, &QQuickWindow::afterSynchronizing, videoItem, &QObject::deleteLater);
}
