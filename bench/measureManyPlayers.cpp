// Many players in one window, each with the same small video of ten frames a second.

#include "Bench.h"

#include <QtCore/QRandomGenerator>

#include <vector>

/// `seconds` 0: they stay paused, and only the last one is then played, to see that it works.
QJsonObject measureManyPlayers(Stage &stage)
{
    constexpr double framesPerSecond = 10;
    const int count = stage.setup.size;
    const double seconds = stage.setup.seconds;
    const double memoryBefore = memoryKiB();
    const int threadsBefore = threadCount();
    const auto start = Clock::now();

    std::vector<std::unique_ptr<Subject>> subjects;
    QList<QPoint> points;
    for (int i = 0; i < count; ++i) {
        subjects.push_back(stage.addSubject(i, count));
        subjects.back()->open(stage.file(QStringLiteral("blink.mkv")));
        points.append(stage.place(i, count).center());
    }
    for (const QPoint point : std::as_const(points))
        await("a first frame", [&] { return stage.screen.colourAt(point) != QColor(Qt::magenta); });
    const double started = since(start);

    rest(1);
    const auto parallel = [&](double length) {
        const auto from = Clock::now();
        const double before = processorSeconds();
        rest(length);
        return (processorSeconds() - before) / since(from) * 1000;
    };
    QJsonObject figures {{QStringLiteral("start"), started}};
    if (seconds == 0) {
        figures[QStringLiteral("cpu")] = parallel(5);
        subjects.back()->play();
        stage.screen.startCounting({points.back()});
        await("the last player's pictures",
              [&] { return stage.screen.colourAt(points.back()).lightness() > 127; });
        await("the last player's pictures",
              [&] { return stage.screen.colourAt(points.back()).lightness() < 127; });
    } else {
        // At any point of a frame's time: players that show their frames together cost less, and
        // a host does not start them together.
        for (const auto &subject : subjects) {
            subject->play();
            rest(QRandomGenerator::global()->bounded(0.1));
        }
        rest(2);
        figures[QStringLiteral("cpu")] = parallel(seconds);
        stage.screen.startCounting(points);
        rest(seconds);
        double seen = 0;
        for (const int changes : stage.screen.stopCounting())
            seen += changes;
        figures[QStringLiteral("missed")] = 1 - seen / (framesPerSecond * seconds * count);
    }
    figures[QStringLiteral("memory")] = memoryKiB() - memoryBefore;
    figures[QStringLiteral("threads")] = threadCount() - threadsBefore;
    figures[QStringLiteral("descriptors")] = descriptorCount();
    return figures;
}
