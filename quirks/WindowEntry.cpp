#include "quirks/WindowEntry.h"

#include <QtCore/QMetaMethod>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

namespace
{

constexpr char changed[] = SLOT(handleWindowChanged(QQuickWindow *)); // clang-format off
constexpr char initialized[] = SLOT(onSceneGraphInitialized());
constexpr char invalidated[] = SLOT(onSceneGraphInvalidated()); // clang-format on

bool hasSlot(const QObject *item, const char *slot)
{
    return item->metaObject()->indexOfSlot(slot + 1) >= 0;
}

/// What the item's own slot does, but for the job: it forgets its state where it leaves, and looks
/// at the window's GL context before each frame, where a context that it knows costs nothing.
void enter(QQuickItem *item, QQuickWindow *window, QPointer<QQuickWindow> &previous)
{
    if (previous)
        QObject::disconnect(previous, nullptr, item, nullptr);
    previous = window;
    if (!window) {
        if (hasSlot(item, changed)) // the base class's destructor comes here too
            QMetaObject::invokeMethod(item, "handleWindowChanged", Qt::DirectConnection,
                                      Q_ARG(QQuickWindow *, nullptr));
        return;
    }
    QObject::connect(window, SIGNAL(beforeSynchronizing()), item, initialized,
                     Qt::DirectConnection);
    QObject::connect(window, SIGNAL(sceneGraphInvalidated()), item, invalidated,
                     Qt::DirectConnection);
}

} // namespace

void enterWindowsWithoutJobs(QQuickItem *item)
{
    if (!hasSlot(item, initialized) || !hasSlot(item, invalidated)
        || !QObject::disconnect(item, SIGNAL(windowChanged(QQuickWindow *)), item, changed))
        return;
    QObject::connect(item, &QQuickItem::windowChanged, item,
                     [item, previous = QPointer<QQuickWindow>()](QQuickWindow *window) mutable {
                         enter(item, window, previous);
                     });
}
