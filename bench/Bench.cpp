#include "Bench.h"

#include "pluginSubject.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtQuick/QQuickItem>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>

constexpr QSize windowSize(640, 360);

void fail(const QString &why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::fflush(nullptr);
    _exit(1); // nothing to tidy up, and Qt may be anywhere
}

void await(const char *what, const std::function<bool()> &arrived)
{
    const auto start = Clock::now();
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (arrived())
            loop.quit();
        else if (since(start) > 10'000)
            fail(QStringLiteral("waited 10 s for ") + QLatin1String(what));
    });
    timer.start(1);
    if (!arrived())
        loop.exec();
}

void rest(double seconds)
{
    QEventLoop loop;
    QTimer::singleShot(int(seconds * 1000), &loop, &QEventLoop::quit);
    loop.exec();
}

double since(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double processorSeconds()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](timeval time) {
        return double(time.tv_sec) + double(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double memoryKiB()
{
    malloc_trim(0);
    double total = 0;
    double resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * double(sysconf(_SC_PAGESIZE)) / 1024;
}

static int entriesOf(const char *folder)
{
    return int(QDir(QLatin1String(folder))
                   .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                   .size());
}

int threadCount()
{
    return entriesOf("/proc/self/task");
}

int descriptorCount()
{
    return entriesOf("/proc/self/fd");
}

Stage::Stage(const Setup &chosen) : setup(chosen), screen(&window)
{
    window.resize(windowSize);
    window.setColor(Qt::magenta); // no file's colour: what is not covered shows
    window.show();
    await("the window", [this] { return window.isExposed(); });
    rest(0.3);
}

QRect Stage::place(int index, int count) const
{
    const int columns = int(std::ceil(std::sqrt(count)));
    const QSize cell = windowSize / columns;
    return QRect(QPoint(index % columns * cell.width(), index / columns * cell.height()), cell);
}

std::unique_ptr<Subject> Stage::addSubject(int index, int count)
{
    auto *item = new QQuickItem(window.contentItem());
    const QRect area = place(index, count);
    item->setPosition(area.topLeft());
    item->setSize(area.size());
    // The plug-in moves the parent of the item it is given to (0, 0), so each has one of its own.
    if (setup.subject == QLatin1String("plugin"))
        return std::make_unique<PluginSubject>(item);
    if (setup.subject == QLatin1String("client"))
        return makeClient(item, setup.library);
    if (setup.subject == QLatin1String("bare"))
        return makeBarePipeline(item);
    return makeQtMultimedia(item);
}

QString Stage::file(const QString &name) const
{
    return QUrl::fromLocalFile(setup.media + QLatin1Char('/') + name).toString();
}
