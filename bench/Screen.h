#ifndef SCREEN_H
#define SCREEN_H

#include <QtCore/QList>
#include <QtCore/QPoint>
#include <QtGui/QColor>

#include <chrono>
#include <mutex>

class QQuickWindow;

using Clock = std::chrono::steady_clock;

/// Tells what the X server shows of a window, by reading single pixels of it after each
/// frameSwapped, on the thread that renders. It costs a round trip, and only while it is asked.
class Screen
{
public:
    explicit Screen(QQuickWindow *watched);

    /// Milliseconds from `start` to the frame after which the point has the colour. Fails the
    /// process after ten seconds. GUI thread; keeps the event loop going.
    double awaitColour(QPoint point, QColor wanted, Clock::time_point start);

    /// How often each point has changed between black and white meanwhile.
    void startCounting(const QList<QPoint> &points);
    QList<int> stopCounting();

    QColor colourAt(QPoint point) const; ///< any thread

private:
    void frameSwapped();

    QQuickWindow *window;
    std::mutex lock; ///< guards all below, which both threads use
    bool armed = false;
    bool arrived = false;
    QPoint watchedPoint;
    QColor watchedColour;
    Clock::time_point arrival;
    QList<QPoint> counted;
    QList<bool> bright;
    QList<int> changes;
};

#endif
