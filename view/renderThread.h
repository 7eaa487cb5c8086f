#ifndef RENDERTHREAD_H
#define RENDERTHREAD_H

class QQuickItem;

/// Keeps the render threads of the windows that the video item comes to free of the GL context
/// that the item leaves behind on them. To be called before the item gets its first window.
void keepRenderThreadsClean(QQuickItem *videoItem);

#endif
