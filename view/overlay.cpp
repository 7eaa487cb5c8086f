#include "view/MediaPlayerView.h"

#include <functional>

// The overlay's functions stand in the scene. The GUI thread posts to the scene itself. The video
// object may only be reached there, so other threads post to the view, which calls the scene at
// once: one hop in both cases, so the order of texts is the order of events.

namespace
{

/// [any] By the time it arrives another file may be current.
void postFor(MediaPlayerView &view, const GstElement *subject, const std::function<void()> &call)
{
    QMetaObject::invokeMethod(
        &view,
        [&view, subject, call] {
            if (view.videoObject && subject && subject == view.pipeline)
                call();
        },
        Qt::QueuedConnection);
}

} // namespace

void MediaPlayerView::showOverlay(const QString &text)
{
    assertGuiThread();
    QMetaObject::invokeMethod(videoObject, "showOverlay", Qt::QueuedConnection,
                              Q_ARG(QVariant, QVariant(text)));
}

void MediaPlayerView::hideOverlay()
{
    assertGuiThread();
    QMetaObject::invokeMethod(videoObject, "hideOverlay", Qt::QueuedConnection);
}

void MediaPlayerView::showOverlayOf(const GstElement *subject, const QString &text)
{
    postFor(*this, subject, [this, text] {
        QMetaObject::invokeMethod(videoObject, "showOverlay", Qt::DirectConnection,
                                  Q_ARG(QVariant, QVariant(text)));
    });
}

void MediaPlayerView::hideOverlayOf(const GstElement *subject)
{
    postFor(*this, subject, [this] {
        QMetaObject::invokeMethod(videoObject, "hideOverlay", Qt::DirectConnection);
    });
}
