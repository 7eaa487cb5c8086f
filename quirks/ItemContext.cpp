#include "quirks/ItemContext.h"

#include <QtGui/QOpenGLContext>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickRenderControl>
#include <QtQuick/QQuickWindow>

#include <utility>

ItemContext::ItemContext(QQuickItem *videoItem) : QObject(videoItem)
{
    connect(videoItem, SIGNAL(itemInitializedChanged()), this, SLOT(report()),
            Qt::DirectConnection);
}

bool ItemContext::kept()
{
    QQuickWindow *const scene = static_cast<QQuickItem *>(parent())->window();
    QWindow *const top = QQuickRenderControl::renderWindowFor(scene);
    QWindow *const window = top ? top : scene;
    const bool sameWindow = std::exchange(m_windowAtLastCall, window) == window;
    QOpenGLContext *const context = m_reported;
    return m_atLastCall.exchange(context) == context && context && sameWindow && window;
}

void ItemContext::report()
{
    QOpenGLContext *const now = QOpenGLContext::currentContext();
    if (now == m_reported)
        return;
    disconnect(m_end);
    m_reported = now;
    if (now)
        m_end = connect(
            now, &QOpenGLContext::aboutToBeDestroyed, this,
            [this] { m_reported = m_atLastCall = nullptr; }, Qt::DirectConnection);
}
