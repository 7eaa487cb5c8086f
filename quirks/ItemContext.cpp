#include "quirks/ItemContext.h"

#include <QtGui/QOpenGLContext>
#include <QtQuick/QQuickItem>

ItemContext::ItemContext(QQuickItem *videoItem) : QObject(videoItem)
{
    connect(videoItem, SIGNAL(itemInitializedChanged()), this, SLOT(report()),
            Qt::DirectConnection);
}

bool ItemContext::kept()
{
    QOpenGLContext *const now = m_reported;
    return m_atLastCall.exchange(now) == now && now;
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
