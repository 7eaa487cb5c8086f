#include "quirks/CurrentContext.h"

#include "pipeline/GstHandle.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <gst/gl/gl.h>

#include <memory>
#include <mutex>
#include <set>
#include <unordered_map>

namespace
{

using Handle = guintptr;
using GLContextRef = ObjectRef<GstGLContext>;

/// The native context that Qt has made current on this thread, or 0.
Handle currentOn(GstGLContext *context)
{
    return gst_gl_context_get_current_gl_context(gst_gl_context_get_gl_platform(context));
}

/// GStreamer's wrappers of the GL contexts that video items draw with, by native context. `own` is
/// the one with which a window's item draws: its material wants no other, though items that share a
/// native context may have come by a wrapper each.
class Wrappers
{
public:
    /// [render] Lets an item that is initialised in this frame find its window's context, or none.
    void note(GLContextRef &own)
    {
        if (own && gst_gl_context_get_gl_context(own.get()) == currentOn(own.get())) {
            gst_gl_context_activate(own.get(), TRUE);
            return;
        }
        const std::lock_guard guard(m_mutex);
        for (const auto &[handle, wrapper] : m_wrappers) {
            if (handle == currentOn(wrapper.get())) {
                gst_gl_context_activate(wrapper.get(), TRUE);
                return;
            }
        }
    }

    /// [render] The GUI thread waits meanwhile, so that no item, and no context, can go.
    void keep(GLContextRef &own)
    {
        GstGLContext *const noted = gst_gl_context_get_current();
        if (!noted)
            return;
        const Handle handle = gst_gl_context_get_gl_context(noted);
        if (handle != currentOn(noted))
            return;
        own.reset(GST_GL_CONTEXT(gst_object_ref(noted)));
        const std::lock_guard guard(m_mutex);
        if (GLContextRef &wrapper = m_wrappers[handle]; wrapper.get() != noted)
            wrapper.reset(GST_GL_CONTEXT(gst_object_ref(noted)));
    }

    /// [render] When the frame has been drawn: until then the item's material needs the note.
    void forgetNote(GLContextRef &own)
    {
        GstGLContext *const noted = gst_gl_context_get_current();
        if (noted && noted == own.get()) {
            gst_gl_context_activate(noted, FALSE);
            return;
        }
        const std::lock_guard guard(m_mutex);
        for (const auto &[handle, wrapper] : m_wrappers) {
            if (wrapper.get() == noted) {
                gst_gl_context_activate(noted, FALSE);
                return;
            }
        }
    }

    /// [render] The native context may go now.
    void drop(GLContextRef &own)
    {
        forgetNote(own);
        own.reset();
        const std::lock_guard guard(m_mutex);
        std::erase_if(m_wrappers, [](const auto &entry) {
            return entry.first == currentOn(entry.second.get());
        });
    }

private:
    std::mutex m_mutex; // a leaf; render threads
    std::unordered_map<Handle, GLContextRef> m_wrappers;
};

// Never destroyed: a window may outlive the library's static objects.
Wrappers &wrappers()
{
    static auto *instance = new Wrappers;
    return *instance;
}

void watchDrawing(QQuickWindow *window)
{
    static auto *watched = new std::set<const QObject *>; // GUI thread
    if (!watched->insert(window).second)
        return;
    QObject::connect(window, &QObject::destroyed,
                     [](const QObject *gone) { watched->erase(gone); });
    const auto own = std::make_shared<GLContextRef>(); // the render thread's
    const auto onRenderThread = [window, own](auto signal, void (Wrappers::*step)(GLContextRef &)) {
        QObject::connect(
            window, signal, window, [step, own] { (wrappers().*step)(*own); },
            Qt::DirectConnection);
    };
    onRenderThread(&QQuickWindow::sceneGraphInitialized, &Wrappers::note);
    onRenderThread(&QQuickWindow::beforeSynchronizing, &Wrappers::note);
    onRenderThread(&QQuickWindow::afterSynchronizing, &Wrappers::keep);
    onRenderThread(&QQuickWindow::beforeRendering, &Wrappers::note); // of a frame without news
    onRenderThread(&QQuickWindow::afterRendering, &Wrappers::forgetNote);
    onRenderThread(&QQuickWindow::sceneGraphInvalidated, &Wrappers::drop);
}

} // namespace

void keepCurrentContext(QQuickItem *videoItem)
{
    QObject::connect(videoItem, &QQuickItem::windowChanged, videoItem, [](QQuickWindow *window) {
        if (window)
            watchDrawing(window);
    });
}
