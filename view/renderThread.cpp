#include "view/renderThread.h"

#include "pipeline/GstHandle.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <gst/gl/gl.h>

#include <mutex>

using GLContextRef = ObjectRef<GstGLContext>;

namespace
{

GLContextRef sameContext(const GLContextRef &context)
{
    return GLContextRef(context ? GST_GL_CONTEXT(gst_object_ref(context.get())) : nullptr);
}

/// Whether the context wraps the one that Qt has made current on this thread.
bool wrapsCurrent(GstGLContext *context)
{
    const GstGLPlatform platform = gst_gl_context_get_gl_platform(context);
    return gst_gl_context_get_gl_context(context)
        == gst_gl_context_get_current_gl_context(platform);
}

} // namespace

// GStreamer notes for each thread, by a bare pointer, the GL context that was used there last. A
// video item that draws leaves its own there, and the next item that comes up on this thread takes
// it: for another window's, whose context may be gone, or is freed memory by then. Its pipeline
// does not start, and whoever takes it down waits for ever. So the note is wiped while it still
// names a living context: the GUI thread, which deletes items, waits during synchronization.
//
// An item that comes into a window takes what is noted or wraps the window's GL context anew, and
// forgets what it had before: 27 KB each time. So it finds noted what items have in this window,
// and in a window that shares its GL context with the item's last one, what the item had there.
class RenderThreadNote::OfWindow : public QObject
{
public:
    explicit OfWindow(QQuickWindow *window) : QObject(window)
    {
        setObjectName(QLatin1String(name));
        const auto onRenderThread = [this, window](auto signal, auto slot) {
            connect(window, signal, this, slot, Qt::DirectConnection);
        };
        // A window that goes before it synchronizes still runs what the item has left with it.
        onRenderThread(&QQuickWindow::sceneGraphInitialized, &OfWindow::set);
        onRenderThread(&QQuickWindow::beforeSynchronizing, &OfWindow::set);
        onRenderThread(&QQuickWindow::sceneGraphAboutToStop, &OfWindow::set);
        onRenderThread(&QQuickWindow::afterSynchronizing, &OfWindow::wipe);
        onRenderThread(&QQuickWindow::sceneGraphInvalidated, &OfWindow::wipe);
    }

    static constexpr char name[] = "mediaPlayerRenderThreadNote";

    GLContextRef context()
    {
        const std::lock_guard guard(m_mutex);
        return sameContext(m_context);
    }

    void offer(const GLContextRef &context)
    {
        const std::lock_guard guard(m_mutex);
        if (!m_context)
            m_context = sameContext(context);
    }

private:
    void set()
    {
        const GLContextRef own = context();
        if (own && wrapsCurrent(own.get()))
            gst_gl_context_activate(own.get(), TRUE);
    }

    void wipe()
    {
        GstGLContext *const noted = gst_gl_context_get_current();
        if (!noted)
            return;
        if (wrapsCurrent(noted)) {
            const std::lock_guard guard(m_mutex);
            m_context.reset(GST_GL_CONTEXT(gst_object_ref(noted)));
        }
        gst_gl_context_activate(noted, FALSE);
    }

    std::mutex m_mutex; // a leaf; render thread and GUI thread
    GLContextRef m_context;
};

RenderThreadNote::RenderThreadNote(QQuickItem *videoItem) : QObject(videoItem)
{
    connect(videoItem, &QQuickItem::windowChanged, this, [this](QQuickWindow *window) {
        if (window)
            tend(window);
        else if (m_current)
            m_last = m_current->context();
    });
}

RenderThreadNote::~RenderThreadNote() = default;

void RenderThreadNote::tend(QQuickWindow *window)
{
    auto *found =
        window->findChild<QObject *>(QLatin1String(OfWindow::name), Qt::FindDirectChildrenOnly);
    m_current = found ? static_cast<OfWindow *>(found) : new OfWindow(window);
    m_current->offer(m_last);
}

// GStreamer's item hands each window that it comes into a render job with a bare pointer to
// itself. The window runs its jobs when it synchronizes or ends, before it deletes its children.
void outliveRenderJob(QQuickItem *videoItem, QQuickWindow *window)
{
    videoItem->setParentItem(nullptr);
    videoItem->setParent(window);
    QObject::connect(window, &QQuickWindow::afterSynchronizing, videoItem, &QObject::deleteLater);
}
