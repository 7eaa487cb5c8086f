// What is shown of the interface, and when.

#include "Session.h"

#include <QtGui/QCursor>
#include <QtGui/QScreen>
#include <QtGui/QWindow>

using namespace std::chrono_literals;

constexpr auto idleTime = 2500ms;

void Session::watchIdle()
{
    idle.setInterval(idleTime);
    idle.setSingleShot(true);
    connect(&idle, &QTimer::timeout, this, [this] {
        if (!fullScreen || !thePlayer.isPlaying())
            return;
        controlsShown = false;
        Q_EMIT shownChanged();
    });
    connect(&thePlayer, &MediaPlayer::Player::playingChanged, this, &Session::touch);
}

void Session::touch()
{
    idle.start();
    if (std::exchange(controlsShown, true))
        return;
    Q_EMIT shownChanged();
}

void Session::setFullScreen(bool on)
{
    if (std::exchange(fullScreen, on) == on)
        return;
    controlsShown = true;
    idle.start();
    Q_EMIT shownChanged();
}

void Session::setListShown(bool on)
{
    if (std::exchange(listShown, on) != on)
        Q_EMIT shownChanged();
}

void Session::setDeveloperShown(bool on)
{
    if (std::exchange(developerShown, on) == on)
        return;
    theMemory.setShowsDeveloper(on);
    Q_EMIT shownChanged();
}

QSize Session::firstSize(const QScreen &screen) const
{
    return theMemory.windowSize().boundedTo(screen.availableSize() * 0.92); // with its frame
}

void Session::watch(QWindow *window)
{
    watched = window;
    window->installEventFilter(this);
    touch();
}

// A window that appears under the pointer is told of a movement that is none.
bool Session::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
        if (std::exchange(pointer, QCursor::pos()) != QCursor::pos())
            touch();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
        touch();
        break;
    case QEvent::Resize:
        if (watched->windowStates() == Qt::WindowNoState)
            theMemory.setWindowSize(watched->size());
        break;
    case QEvent::WindowStateChange:
        if (!(watched->windowStates() & Qt::WindowFullScreen))
            theMemory.setMaximized(watched->windowStates() & Qt::WindowMaximized);
        break;
    default:
        break;
    }
    return QObject::eventFilter(object, event);
}
