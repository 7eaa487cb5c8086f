// Loading files: how long until the picture is there, and what a loaded file costs.

#include "Bench.h"
#include "Timeline.h"
#include "pluginSubject.h"

namespace
{

/// The files of a kind show these two colours by turns; see bench/media.
QColor colourOf(int number)
{
    return number % 2 == 0 ? Qt::red : Qt::blue;
}

QString numbered(const QString &kind, int number)
{
    return QStringLiteral("%1-%2.mkv").arg(kind).arg(number);
}

double timeToOpen(Stage &stage, Subject &subject, const QString &kind, int number,
                  const std::function<void()> &returned = {})
{
    const QString uri = stage.file(numbered(kind, number));
    const QPoint inMarker = QPoint(20, 20);
    const auto start = Clock::now();
    subject.open(uri);
    if (returned) // in the order of the event loop, in which the plug-in is asked as well
        QMetaObject::invokeMethod(&stage.window, returned, Qt::QueuedConnection);
    const double time = stage.screen.awaitColour(inMarker, colourOf(number), start);
    rest(0.1);
    return time;
}

} // namespace

/// "new": files never opened before; "back": A, B, A, B, ...; "polled" and "polled new": the same,
/// found by the plug-in's own poll.
QJsonObject measureLoads(Stage &stage)
{
    const QString kind = QString::number(stage.setup.size);
    const auto subject = stage.addSubject();
    QJsonArray fresh;
    QJsonArray back;
    QJsonArray polled;
    QJsonArray polledNew;
    timeToOpen(stage, *subject, kind, 0); // with the first file comes the start of everything
    for (int i = 1; i <= stage.setup.rounds; ++i)
        fresh.append(timeToOpen(stage, *subject, kind, i));
    timeToOpen(stage, *subject, kind, stage.setup.rounds % 2 == 0 ? 1 : 0);
    const int last = stage.setup.rounds % 2 == 0 ? 1 : 0;
    for (int i = 1; i <= 2 * stage.setup.rounds; ++i)
        back.append(timeToOpen(stage, *subject, kind, (last + i) % 2));

    if (auto *plugin = dynamic_cast<PluginSubject *>(subject.get())) {
        const auto timeToPoll = [&](int number) {
            plugin->writeFileName(stage.file(numbered(kind, number)));
            const auto start = Clock::now();
            plugin->raise(MediaPlayerCommandLoad);
            const double time = stage.screen.awaitColour(QPoint(20, 20), colourOf(number), start);
            await("an answer", [plugin] { return plugin->isAnswered(); });
            return time;
        };
        for (int i = 1; i <= stage.setup.rounds; ++i)
            polled.append(timeToPoll((last + i) % 2));
        for (int i = 1; i <= stage.setup.rounds; ++i) // the colours go on by turns
            polledNew.append(timeToPoll(last + stage.setup.rounds + i));
    }
    return {{QStringLiteral("new"), fresh},
            {QStringLiteral("back"), back},
            {QStringLiteral("polled"), polled},
            {QStringLiteral("polled new"), polledNew}};
}

/// Where the time of a load goes: for each stage the milliseconds from the question to its end, a
/// list a stage, of "back" and of "new" loads. Every one from a rest, as a viewer asks.
QJsonObject measureTimeline(Stage &stage)
{
    const QString kind = QString::number(stage.setup.size);
    Timeline timeline(&stage.window);
    const auto subject = stage.addSubject();
    const auto times = [&](const QList<int> &numbers) {
        QJsonObject stages;
        for (const int number : numbers) {
            timeline.start();
            const auto start = Clock::now();
            const double shown = timeToOpen(stage, *subject, kind, number,
                                            [&] { timeline.note(Timeline::loadReturns); });
            const auto end = start
                + std::chrono::duration_cast<Clock::duration>(
                                 std::chrono::duration<double, std::milli>(shown));
            for (const auto &[name, time] : timeline.stop(end)) {
                QJsonArray list = stages[name].toArray();
                list.append(std::chrono::duration<double, std::milli>(time - start).count());
                stages[name] = list;
            }
        }
        return stages;
    };
    for (int i = 0; i < 2; ++i)
        timeToOpen(stage, *subject, kind, i);
    QList<int> fresh;
    QList<int> back;
    for (int i = 2; i < 2 + stage.setup.rounds; ++i)
        fresh.append(i);
    for (int i = 0; i < 2 * stage.setup.rounds; ++i)
        back.append((stage.setup.rounds + i) % 2);
    const QJsonObject newOnes = times(fresh);
    return {{QStringLiteral("new"), newOnes}, {QStringLiteral("back"), times(back)}};
}

/// Processor seconds per second while playing, less what the process took before.
QJsonObject measurePlaying(Stage &stage)
{
    const auto share = [&stage](double seconds) {
        const auto start = Clock::now();
        const double before = processorSeconds();
        rest(seconds);
        return (processorSeconds() - before) / since(start) * 1000;
    };
    const double idle = share(1);
    const auto subject = stage.addSubject();
    timeToOpen(stage, *subject, QString::number(stage.setup.size), 0);
    rest(0.3);
    subject->play();
    rest(1);
    return {{QStringLiteral("cpu"), share(stage.setup.seconds) - idle}};
}

/// KiB for each more file that has been opened once; the first two are the start of everything.
QJsonObject measureMemory(Stage &stage)
{
    const QString kind = QString::number(stage.setup.size);
    const auto subject = stage.addSubject();
    for (int i = 0; i < 2; ++i)
        timeToOpen(stage, *subject, kind, i);
    const double before = memoryKiB();
    for (int i = 2; i < 2 + stage.setup.rounds; ++i)
        timeToOpen(stage, *subject, kind, i);
    return {{QStringLiteral("perFile"), (memoryKiB() - before) / stage.setup.rounds}};
}

/// Switching between two files of a cache with `size` files.
QJsonObject measureCache(Stage &stage)
{
    const QString kind = QStringLiteral("small");
    const auto subject = stage.addSubject();
    const int files = stage.setup.size;
    for (int i = 0; i < qMax(files, 2); ++i) { // to switch takes two
        if (i < files || files == 1)
            timeToOpen(stage, *subject, kind, i);
    }
    QJsonArray back;
    const int last = qMax(files, 2) - 1;
    for (int i = 0; i < stage.setup.rounds; ++i) {
        const int number = (last + (i + 1) * (files > 2 ? 7 : 1)) % qMax(files, 2);
        back.append(timeToOpen(stage, *subject, kind, number));
    }
    return {{QStringLiteral("back"), back},
            {QStringLiteral("memory"), memoryKiB()},
            {QStringLiteral("descriptors"), descriptorCount()},
            {QStringLiteral("threads"), threadCount()}};
}
