#include "boundary/MediaPlayerControl.h"

#include "boundary/AtomicAccess.h"
#include "boundary/Record.h"
#include "diagnostics/Trace.h"
#include "view/MediaPlayerView.h"
#include "view/liveViews.h"
#include "view/placement.h"
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

// The widget goes with its control. A picture in it that belongs to a newer control is parked, and
// that control's next showing brings it back. With enableWorkaround the widget stays alive, since
// the picture may still be in it.
MediaPlayerControl::~MediaPlayerControl()
{
    traceLine("MediaPlayerControl::~MediaPlayerControl");
    if (!quickWidget)
        return;
    if (switchedOn(enableWorkaround)) {
        if (view)
            leaveWidgetBehind(*view, quickWidget);
        return;
    }
    quickWidget->deleteLater();
    if (view && view->life.control == this)
        view->scheduleDeletion();
    else if (view && isShownBy(*view, quickWidget))
        view->saveObject();
}

// Showing a widget can run the host's code, as in an event filter.
int MediaPlayerControl::SysNativeControlShow(int show)
{
    traceFormat("MediaPlayerControl::SysNativeControlShow: %d\n", show);
    const bool wanted = show == 1;
    const QPointer<MediaPlayerControl> self(this);
    if (quickWidget)
        quickWidget->setVisible(wanted);
    if (!self)
        return 1;
    if (quickWidget && wanted && view && view->params) {
        MediaPlayerView *const named = Record(view->params).view();
        if (isLive(named))
            named->parentItem = quickWidget->rootObject();
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
    auto *hostRecord = static_cast<MediaPlayerParams *>(value);
    const QPointer<MediaPlayerControl> self(this);
    if (!takeOverView(hostRecord) && !makeView(hostRecord))
        return 1;
    if (!self || !view)
        return 1;
    view->bind(this, hostRecord);
    connect(view, SIGNAL(destruct()), this, SLOT(onDestruct()));
    if (!view->source)
        view->loadFile();
    return 1;
}

// The view may move to another window, and the host's code that hears of it may end this control.
bool MediaPlayerControl::takeOverView(MediaPlayerParams *hostRecord)
{
    MediaPlayerView *const serving = Record(hostRecord).view();
    if (!isLive(serving) || serving->life.deletionScheduled)
        return false;
    view = serving;
    view->updateReferences(window, parentItem, nullptr);
    return true;
}

// The picture enters the host's item while the view is made. That can run the host's code, which
// may destroy this control. A view that is about to be deleted serves the record until then.
bool MediaPlayerControl::makeView(MediaPlayerParams *hostRecord)
{
    const QPointer<MediaPlayerControl> self(this);
    const QPointer<MediaPlayerView> made(new MediaPlayerView(window, parentItem, nullptr));
    if (!self) {
        delete made.data();
        return false;
    }
    const Record record(hostRecord);
    if (MediaPlayerView *const replaced = record.view(); isLive(replaced))
        replaced->yieldRecord();
    view = made;
    record.setView(view);
    return true;
}

// Parking can run the host's code.
bool MediaPlayerControl::saveObject()
{
    traceLine("MediaPlayerControl::saveObject");
    const QPointer<MediaPlayerControl> self(this);
    if (view)
        view->saveObject();
    if (self && !quickWidget)
        deleteLater();
    return false;
}

// A control may have registered two records: the view that ends is the one that says so.
void MediaPlayerControl::onDestruct()
{
    traceLine("MediaPlayerControl::onDestruct");
    deleteLater();
    auto *const announcing = qobject_cast<MediaPlayerView *>(sender());
    const QPointer<MediaPlayerView> ending = announcing ? announcing : view.data();
    if (ending)
        ending->unrefPipe();
    if (ending)
        ending->scheduleDeletion();
}
