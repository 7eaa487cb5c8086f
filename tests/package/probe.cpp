// Preloaded into a program that nobody else looks at: waits until its window shows the four colours of
// quadrants.webm; where PROBE is "pages", clicks its upper edge, waits until they are gone, and goes
// back; then closes the window as a user does.
#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPixmap>
#include <QtGui/QScreen>
#include <QtGui/QWindow>

#include <algorithm>

/// How many of red, green, blue and white fill a twentieth of the window.
static int coloursIn(const QImage &image)
{
    int counts[8] = {};
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            const auto bit = [](int level) { return level > 200 ? 1 : level < 60 ? 0 : 8; };
            const int bits = bit(qRed(pixel)) + 2 * bit(qGreen(pixel)) + 4 * bit(qBlue(pixel));
            counts[bits < 8 ? bits : 0] += 1;
        }
    }
    const int colours[] = {1, 2, 4, 7};
    return int(std::count_if(std::begin(colours), std::end(colours), [&](int bits) {
        return counts[bits] > image.width() * image.height() / 20;
    }));
}

static void look()
{
    static int step = 0;
    static int looks = 0;
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto shown = std::find_if(windows.begin(), windows.end(),
                                    [](const QWindow *window) { return window->isVisible(); });
    if (++looks > 300)
        qFatal("the window does not show what is expected in step %d", step);
    if (shown == windows.end())
        return;
    QWindow *const window = *shown;
    const int colours = coloursIn(window->screen()->grabWindow(window->winId()).toImage());
    if (step == 1 ? colours > 1 : colours < 4) // what is white may be the page
        return;
    const bool last = qgetenv("PROBE") != "pages" || step == 2;
    ++step;
    if (last) {
        window->close();
        return;
    }
    const QPointF edge(window->width() / 2., 15);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent click(type, edge, window->mapToGlobal(edge), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
        QCoreApplication::sendEvent(window, &click);
    }
}

static void startLooking()
{
    auto *const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, look);
    timer->start(100);
}
Q_COREAPP_STARTUP_FUNCTION(startLooking)
