#ifndef RENDERTHREAD_H
#define RENDERTHREAD_H

#include "pipeline/GstHandle.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <gst/gl/gstgl_fwd.h>

class QQuickItem;
class QQuickWindow;

/// Tends what GStreamer notes on the render threads of the windows that the video item comes to.
/// To be made before the item gets its first window; goes with the item. GUI thread.
class RenderThreadNote : public QObject
{
public:
    explicit RenderThreadNote(QQuickItem *videoItem);
    ~RenderThreadNote() override;

    /// To be called before the item comes into `window`; afterwards the item has been told first.
    void tend(QQuickWindow *window);

private:
    class OfWindow;

    QPointer<OfWindow> m_current;
    ObjectRef<GstGLContext> m_last;
};

/// Lets a video item whose scene is going live on until `window` has run what the item has left
/// with it to be run, or is gone.
void outliveRenderJob(QQuickItem *videoItem, QQuickWindow *window);

#endif
