#include "view/scene.h"

#include "diagnostics/Trace.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"
#include "view/liveViews.h"

#include <QtCore/QCoreApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <memory>

namespace
{

QQmlEngine *engine = nullptr; // GUI thread

void endEngine()
{
    endLiveViews();
    delete engine;
    engine = nullptr;
}

} // namespace

QString sceneFile(const char *name)
{
    return QStringLiteral("/opt/VexadorControl/") + QLatin1String(name);
}

QQmlEngine *sharedEngine()
{
    if (!engine) {
        engine = new QQmlEngine;
        qAddPostRoutine(endEngine);
    }
    return engine;
}

QQuickItem *findVideoItem(const QQuickItem *root)
{
    return root->findChild<QQuickItem *>(QStringLiteral("videoItem"));
}

void MediaPlayerView::initQuickWidget()
{
    traceLine("MediaPlayerView::initQuickWidget");
    gstInit(nullptr, nullptr);
    setColor(Qt::transparent);
    setObjectName(QStringLiteral("gstMediaPlayerView"));

    QQmlComponent component(sharedEngine(), QUrl::fromLocalFile(sceneFile("VideoObjectQt6.qml")));
    // Asking first spares the host a warning: a scene that cannot be had is simply not there.
    if (!component.isReady())
        return;
    std::unique_ptr<QObject> root(component.create());
    videoObject = qobject_cast<QQuickItem *>(root.get());
    if (!videoObject)
        return;
    root.release(); // NOLINT: the view owns it through its parents

    traceLine("MediaPlayerView::connect onVisible");
    connect(videoObject, SIGNAL(videoSurfaceReadyChanged(bool)), this, SLOT(onVisible(bool)));
    connect(videoObject, SIGNAL(destruct()), this, SLOT(onDestruct()));
    if (QQuickItem *item = findVideoItem(videoObject))
        quirks.sceneMade(item);
    attachVideoObject();
}

// The host's item may answer a new child with whatever its QML does.
void MediaPlayerView::attachVideoObject()
{
    if (videoObject)
        videoObject->setParent(parentItem);
    if (videoObject)
        videoObject->setParentItem(parentItem);
}

void MediaPlayerView::showOverlay(const QString &text)
{
    QMetaObject::invokeMethod(videoObject, "showOverlay", Qt::QueuedConnection,
                              Q_ARG(QVariant, QVariant(text)));
}

void MediaPlayerView::hideOverlay()
{
    QMetaObject::invokeMethod(videoObject, "hideOverlay", Qt::QueuedConnection);
}

// The video object may only be reached on the GUI thread, so what the update thread has to say is
// posted to the view. There it is said at once: one hop, as for texts of the GUI thread, so the
// order of texts is the order of events. By then another file may be current.
void MediaPlayerView::showOverlayOfPipeline(const QString &text)
{
    postForPipeline([this, text] {
        QMetaObject::invokeMethod(videoObject, "showOverlay", Qt::DirectConnection,
                                  Q_ARG(QVariant, QVariant(text)));
    });
}

void MediaPlayerView::hideOverlayOfPipeline()
{
    postForPipeline(
        [this] { QMetaObject::invokeMethod(videoObject, "hideOverlay", Qt::DirectConnection); });
}

void MediaPlayerView::postForPipeline(const std::function<void()> &call)
{
    const GstElement *const subject = pipeline;
    QMetaObject::invokeMethod(
        this,
        [this, subject, call] {
            if (!ending && videoObject && subject == pipeline)
                call();
        },
        Qt::QueuedConnection);
}
