#include "quirks/WindowEntry.h"

#include <QtCore/QMetaMethod>
#include <QtQuick/QQuickItem>

namespace
{

constexpr char windowChanged[] = "handleWindowChanged(QQuickWindow*)";
constexpr char initialized[] = "onSceneGraphInitialized()";
constexpr char invalidated[] = "onSceneGraphInvalidated()";

QMetaMethod slotOf(const QObject *item, const char *signature)
{
    return item->metaObject()->method(item->metaObject()->indexOfSlot(signature));
}

bool hasSlots(const QObject *item)
{
    return slotOf(item, windowChanged).isValid() && slotOf(item, initialized).isValid()
        && slotOf(item, invalidated).isValid();
}

} // namespace

WindowEntry::WindowEntry(QQuickItem *item) : QObject(item)
{
    if (hasSlots(item)
        && disconnect(item, QMetaMethod::fromSignal(&QQuickItem::windowChanged), item,
                      slotOf(item, windowChanged)))
        connect(item, &QQuickItem::windowChanged, this, &WindowEntry::enter);
}

bool WindowEntry::isInitialized() const
{
    const auto *item = static_cast<const QQuickItem *>(parent());
    return item->window() && !m_entering && item->property("itemInitialized").toBool();
}

void WindowEntry::enter(QQuickWindow *window)
{
    QObject *const item = parent();
    if (m_window) {
        disconnect(m_window, nullptr, this, nullptr);
        disconnect(m_window, QMetaMethod::fromSignal(&QQuickWindow::sceneGraphInvalidated), item,
                   slotOf(item, invalidated));
    }
    m_window = window;
    if (!window)
        return;
    m_entering = true;
    connect(window, &QQuickWindow::beforeSynchronizing, this, &WindowEntry::beforeFrame,
            Qt::DirectConnection);
    connect(window, QMetaMethod::fromSignal(&QQuickWindow::sceneGraphInvalidated), item,
            slotOf(item, invalidated), Qt::DirectConnection);
}

// The item does nothing about a GL context that it knows. Told that it has left its window it knows
// none, and reports that it is initialised.
void WindowEntry::beforeFrame()
{
    QObject *const item = parent();
    if (m_entering.exchange(false))
        slotOf(item, windowChanged)
            .invoke(item, Qt::DirectConnection, Q_ARG(QQuickWindow *, nullptr));
    slotOf(item, initialized).invoke(item, Qt::DirectConnection);
}
