#include "boundary/MediaPlayerControl.h"

#include "boundary/MediaPlayerParams.h"
#include "diagnostics/Trace.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"
#include "view/scene.h"

#include <QtQuick/QQuickWindow>

#include <cstring>

namespace
{

constexpr char registerKey[] = "RegisterParameter";

QRect rectangle(int left, int top, int right, int bottom)
{
    return QRect(QPoint(left, top), QPoint(right, bottom)); // both corners inclusive
}

/// The scene fills the widget by anchors of its own; the widget sizes it instead.
void clearAnchorsFill(QQuickItem *root)
{
    if (auto *anchors = root->property("anchors").value<QObject *>())
        anchors->setProperty("fill", QVariant());
}

} // namespace

MediaPlayerControl::MediaPlayerControl(QWidget *parent, int left, int top, int right, int bottom)
    : BasicWidget(parent)
{
    traceLine("MediaPlayerControl::MediaPlayerControl Widget");
    quickWidget = new QQuickWidget(parent);
    quickWidget->setResizeMode(QQuickWidget::SizeRootObjectToView);
    quickWidget->setClearColor(Qt::black); // what a picture with bars or a border leaves free
    quickWidget->setSource(QUrl::fromLocalFile(sceneFile("QMLView.qml")));
    QQuickItem *const root = quickWidget->rootObject();
    if (root)
        clearAnchorsFill(root);
    window = quickWidget->windowHandle();
    parentItem = root;
    quickWidget->setGeometry(rectangle(left, top, right, bottom));
    if (root)
        root->setSize(QSizeF(quickWidget->size()));
}

MediaPlayerControl::MediaPlayerControl(QQuickWindow *hostWindow, QQuickItem *hostItem)
    : BasicWidget(hostWindow), parentItem(hostItem), window(hostWindow)
{
    traceLine("MediaPlayerControl::MediaPlayerControl QML");
}

MediaPlayerControl::~MediaPlayerControl()
{
    traceLine("MediaPlayerControl::~MediaPlayerControl");
    if (!quickWidget)
        return;
    if (!switchedOn(enableWorkaround)) {
        quickWidget->deleteLater();
        if (view)
            view->endLater();
    } else if (view) {
        view->widgetsLeftBehind.append(quickWidget);
    }
}

int MediaPlayerControl::SysNativeControlShow(int show)
{
    traceFormat("MediaPlayerControl::SysNativeControlShow: %d\n", show);
    const bool wanted = show == 1;
    if (quickWidget && wanted) {
        quickWidget->show();
        MediaPlayerView *const named = view && view->params ? view->params->view : nullptr;
        if (MediaPlayerView::isUsable(named))
            named->parentItem = quickWidget->rootObject();
    } else if (quickWidget) {
        quickWidget->hide();
    }
    if (view) {
        storeRelaxed(view->restoreRequested, wanted);
        storeRelaxed(view->saveRequested, !wanted);
    }
    return 1;
}

int MediaPlayerControl::SysNativeControlDestroy()
{
    traceLine("MediaPlayerControl::SysNativeControlDestroy");
    delete this;
    return 1;
}

int MediaPlayerControl::SysNativeControlMove(int left, int top, int right, int bottom)
{
    traceLine("MediaPlayerControl::SysNativeControlMove");
    if (quickWidget)
        quickWidget->setGeometry(rectangle(left, top, right, bottom));
    return 1;
}

int MediaPlayerControl::SysNativeControlSetSettings(char *key, void *value)
{
    traceLine("MediaPlayerControl::SysNativeControlSetSettings");
    if (!key || std::strcmp(key, registerKey) != 0 || !value)
        return 1;

    auto *block = static_cast<MediaPlayerParams *>(value);
    // A view that is ending serves no record any more; it leaves the field alone when it goes.
    if (MediaPlayerView::isUsable(block->view)) {
        view = block->view;
        view->updateReferences(window, parentItem, nullptr);
    } else {
        view = new MediaPlayerView(window, parentItem, nullptr);
        storeRelaxed(block->view, view.data());
    }
    if (!view)
        return 1;
    view->bound = true;
    storeRelease(view->params, block);
    connect(view, SIGNAL(destruct()), this, SLOT(onDestruct()));
    if (!view->source)
        view->loadFile();
    return 1;
}

bool MediaPlayerControl::saveObject()
{
    traceLine("MediaPlayerControl::saveObject");
    if (view)
        view->saveObject();
    if (!quickWidget)
        deleteLater();
    return false;
}

void MediaPlayerControl::onDestruct()
{
    traceLine("MediaPlayerControl::onDestruct");
    deleteLater();
    if (view)
        view->unrefPipe();
    if (view)
        view->deleteLater();
}
