#include "view/scene.h"

#include "diagnostics/Trace.h"
#include "pipeline/surface.h"
#include "view/MediaPlayerView.h"
#include "view/liveViews.h"
#include "view/placement.h"

#include <QtCore/QCoreApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <memory>

namespace
{

QQmlEngine *engine = nullptr; // [gui]

void endEngine()
{
    endLiveViews();
    delete engine;
    engine = nullptr;
}

} // namespace

QString sceneFile(const char *name)
{
    return QStringLiteral(MEDIAPLAYER_SCENE_DIR "/") + QLatin1String(name);
}

QQmlEngine *sharedEngine()
{
    if (!engine) {
        engine = new QQmlEngine;
        qAddPostRoutine(endEngine);
    }
    return engine;
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
    attachVideoObject(*this);
}
