#ifndef RENDERTHREAD_H
#define RENDERTHREAD_H

class QQuickItem;
class QQuickWindow;

/// Keeps the render threads of the windows that the video item comes to free of the GL context
/// that the item leaves behind on them. To be called before the item gets its first window.
void keepRenderThreadsClean(QQuickItem *videoItem);

/// Lets a video item whose scene is going live on until `window` has run what the item has left
/// with it to be run, or is gone.
void outliveRenderJob(QQuickItem *videoItem, QQuickWindow *window);

#endif
