#include "quirks/WindowEntry.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

namespace
{

QMetaMethod slotOf(const QObject *item, const char *signature)
{
    return item->metaObject()->method(item->metaObject()->indexOfSlot(signature));
}

QMetaMethod windowChangedSlot(const QObject *item)
{
    return slotOf(item, "handleWindowChanged(QQuickWindow*)");
}

QMetaMethod initializedSlot(const QObject *item)
{
    return slotOf(item, "onSceneGraphInitialized()");
}

QMetaMethod invalidatedSlot(const QObject *item)
{
    return slotOf(item, "onSceneGraphInvalidated()");
}

/// Does what the item's own slot does, but for the job. The item forgets its GL context where it
/// leaves, and looks at the window's before each frame. It does nothing about one that it knows.
void enter(QQuickItem *item, QQuickWindow *window, QPointer<QQuickWindow> &previous)
{
    if (previous)
        QObject::disconnect(previous, nullptr, item, nullptr);
    previous = window;
    if (!window) {
        if (const QMetaMethod slot = windowChangedSlot(item); slot.isValid()) // not a dying item's
            slot.invoke(item, Qt::DirectConnection, Q_ARG(QQuickWindow *, nullptr));
        return;
    }
    const auto connectTo = [&](auto signal, const QMetaMethod &slot) {
        QObject::connect(window, QMetaMethod::fromSignal(signal), item, slot, Qt::DirectConnection);
    };
    connectTo(&QQuickWindow::beforeSynchronizing, initializedSlot(item));
    connectTo(&QQuickWindow::sceneGraphInvalidated, invalidatedSlot(item));
}

} // namespace

void enterWindowsWithoutJobs(QQuickItem *item)
{
    if (!initializedSlot(item).isValid() || !invalidatedSlot(item).isValid()
        || !windowChangedSlot(item).isValid()
        || !QObject::disconnect(item, QMetaMethod::fromSignal(&QQuickItem::windowChanged), item,
                                windowChangedSlot(item)))
        return;
    QObject::connect(item, &QQuickItem::windowChanged, item,
                     [item, previous = QPointer<QQuickWindow>()](QQuickWindow *window) mutable {
                         enter(item, window, previous);
                     });
}
