#include "view/MediaPlayerView.h"

// The overlay's functions stand in the scene, which only the GUI thread may reach. Every thread
// posts to the view, which calls the scene at once, so the order of texts is the order of events.

void MediaPlayerView::showOverlay(const QString &text)
{
    QMetaObject::invokeMethod(
        this,
        [this, text] {
            QMetaObject::invokeMethod(videoObject, "showOverlay", Qt::DirectConnection,
                                      Q_ARG(QVariant, QVariant(text)));
        },
        Qt::QueuedConnection);
}

void MediaPlayerView::hideOverlay()
{
    QMetaObject::invokeMethod(
        this,
        [this] { QMetaObject::invokeMethod(videoObject, "hideOverlay", Qt::DirectConnection); },
        Qt::QueuedConnection);
}
