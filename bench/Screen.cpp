#include "Screen.h"

#include "Bench.h"

#include <QtGui/QGuiApplication>
#include <QtGui/qguiapplication_platform.h>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

static bool isAbout(QColor seen, QColor wanted)
{
    const auto near = [](int a, int b) { return std::abs(a - b) < 80; };
    return near(seen.red(), wanted.red()) && near(seen.green(), wanted.green())
        && near(seen.blue(), wanted.blue());
}

Screen::Screen(QQuickWindow *watched) : window(watched)
{
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window, [this] { frameSwapped(); },
        Qt::DirectConnection);
}

// On Qt's own connection, which the frame went through as well: the answer is behind the frame.
QColor Screen::colourAt(QPoint point) const
{
    auto *connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const auto request =
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, xcb_window_t(window->winId()),
                      std::int16_t(point.x()), std::int16_t(point.y()), 1, 1, ~0u);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(connection, request, nullptr), &std::free);
    if (!reply || xcb_get_image_data_length(reply.get()) < 3)
        return {};
    const std::uint8_t *bytes = xcb_get_image_data(reply.get());
    return QColor(bytes[2], bytes[1], bytes[0]);
}

void Screen::frameSwapped()
{
    const auto now = Clock::now();
    const std::lock_guard guard(lock);
    if (armed && !arrived && isAbout(colourAt(watchedPoint), watchedColour)) {
        arrived = true;
        arrival = now;
    }
    for (qsizetype i = 0; i < counted.size(); ++i) {
        const bool isBright = colourAt(counted[i]).lightness() > 127;
        changes[i] += isBright != bright[i];
        bright[i] = isBright;
    }
}

double Screen::awaitColour(QPoint point, QColor wanted, Clock::time_point start)
{
    {
        const std::lock_guard guard(lock);
        watchedPoint = point;
        watchedColour = wanted;
        arrived = false;
        armed = true;
    }
    await("the picture", [this] {
        const std::lock_guard guard(lock);
        return arrived;
    });
    armed = false;
    return std::chrono::duration<double, std::milli>(arrival - start).count();
}

void Screen::startCounting(const QList<QPoint> &points)
{
    const std::lock_guard guard(lock);
    counted = points;
    bright = QList<bool>(points.size(), false);
    changes = QList<int>(points.size(), 0);
}

QList<int> Screen::stopCounting()
{
    const std::lock_guard guard(lock);
    counted.clear();
    return std::exchange(changes, {});
}
