// What only the plug-in has: commands, parking, and how long each operation holds the GUI thread.

#include "Bench.h"
#include "pluginSubject.h"

#include <QtCore/QRandomGenerator>

#include <atomic>
#include <thread>

namespace
{

/// The longest that an event posted to the GUI thread has waited for its turn. One is always on
/// its way, posted half a millisecond after the one before it was taken.
class Hold
{
public:
    Hold() : prober([this] { probe(); }) { }

    ~Hold()
    {
        ended = true;
        prober.join();
    }

    double reset() { return longest.exchange(0); }

private:
    void probe()
    {
        while (!ended) {
            const auto posted = Clock::now();
            std::atomic<bool> taken {false};
            QMetaObject::invokeMethod(
                &target, [&taken] { taken = true; }, Qt::QueuedConnection);
            while (!taken && !ended)
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            longest = qMax(longest.load(), since(posted));
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    }

    QObject target;
    std::atomic<double> longest {0};
    std::atomic<bool> ended {false};
    std::thread prober;
};

std::unique_ptr<PluginSubject> playerWithFile(Stage &stage)
{
    auto subject = stage.addSubject();
    std::unique_ptr<PluginSubject> plugin(dynamic_cast<PluginSubject *>(subject.release()));
    if (!plugin)
        fail(QStringLiteral("only the plug-in has this measure"));
    const auto start = Clock::now();
    plugin->open(stage.file(QStringLiteral("360-0.mkv")));
    stage.screen.awaitColour(QPoint(20, 20), Qt::red, start);
    rest(0.5);
    return plugin;
}

/// Milliseconds until `execute` is lowered, seen by a thread of its own.
double timeToAnswer(PluginSubject &plugin, int command)
{
    std::atomic<double> time {-1};
    const auto start = Clock::now();
    plugin.raise(command);
    std::thread watcher([&] {
        while (!plugin.isAnswered())
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        time = since(start);
    });
    await("an answer", [&] { return time >= 0; });
    watcher.join();
    return time;
}

} // namespace

QJsonObject measureCommands(Stage &stage)
{
    const auto plugin = playerWithFile(stage);
    plugin->play();
    rest(0.5);
    QJsonObject figures;
    for (const int command : {1, 3, 9, 10, 11}) {
        QJsonArray times;
        for (int i = 0; i < stage.setup.rounds; ++i) {
            rest(QRandomGenerator::global()->bounded(0.15)); // anywhere in the poll's interval
            times.append(timeToAnswer(*plugin, command));
            // The file must not end meanwhile.
            if (plugin->record.position > 7'000'000'000) {
                plugin->record.seekPosition = 0;
                plugin->run(MediaPlayerCommandSeek);
            }
        }
        figures[QString::number(command)] = times;
    }
    return figures;
}

/// Processor share of the process with a parked, paused player, and without any player.
QJsonObject measureParked(Stage &stage)
{
    const auto share = [&stage] {
        const auto start = Clock::now();
        const double before = processorSeconds();
        rest(stage.setup.seconds);
        return (processorSeconds() - before) / since(start) * 1000;
    };
    const double without = share();
    const auto plugin = playerWithFile(stage);
    plugin->show(false);
    await("the parking", [&] { return !plugin->isAttached(); });
    rest(1);
    return {{QStringLiteral("cpu"), share()}, {QStringLiteral("without"), without}};
}

QJsonObject measureHolds(Stage &stage)
{
    Hold hold;
    auto plugin = playerWithFile(stage);
    QJsonObject figures;
    figures[QStringLiteral("register")] = QJsonArray {hold.reset()};
    const QString first = stage.file(QStringLiteral("360-0.mkv"));
    int fresh = 1;
    const auto setState = [&](int state) {
        return [&plugin, state] {
            plugin->record.playState = state;
            plugin->run(MediaPlayerCommandPlayState);
        };
    };
    const auto run = [&](int command) { return [&plugin, command] { plugin->run(command); }; };
    const auto load = [&](const QString &name) {
        plugin->writeFileName(name);
        plugin->run(MediaPlayerCommandLoad);
    };
    const std::initializer_list<std::pair<const char *, std::function<void()>>> operations {
        {"nothing", [] {}},
        {"0 load, new video", [&] { load(stage.file(QStringLiteral("360-%1.mkv").arg(fresh++))); }},
        {"0 load, cached", [&] { load(first); }},
        {"0 load, same", [&] { load(first); }},
        {"0 load, refused", [&] { load(stage.file(QStringLiteral("refused.txt"))); }},
        {"2 play", setState(MediaPlayerStatePlaying)},
        {"1 volume", run(MediaPlayerCommandVolume)},
        {"3 mute", run(MediaPlayerCommandMute)},
        {"4 seek", run(MediaPlayerCommandSeek)},
        {"9 transform", run(MediaPlayerCommandTransform)},
        {"10 crop", run(MediaPlayerCommandCrop)},
        {"11 opacity", run(MediaPlayerCommandOpacity)},
        {"12 aspect ratio", run(MediaPlayerCommandKeepAspectRatio)},
        {"2 pause", setState(MediaPlayerStatePaused)},
        {"2 stop", setState(MediaPlayerStateNull)},
        {"park", [&] { plugin->show(false); }},
        {"restore", [&] { plugin->show(true); }},
        {"destroy the control", [&] { plugin->destroyControl(); }},
        {"register again", [&] { plugin->createControl(); }},
    };
    for (int round = 0; round < stage.setup.rounds; ++round) {
        for (const auto &[name, operation] : operations) {
            hold.reset();
            operation();
            rest(0.4); // what the operation has queued belongs to it
            QJsonArray times = figures[QLatin1String(name)].toArray();
            times.append(hold.reset());
            figures[QLatin1String(name)] = times;
        }
    }
    plugin.reset();
    rest(0.4);
    figures[QStringLiteral("end of the player")] = QJsonArray {hold.reset()};
    return figures;
}

/// Ten players one after the other: time to return from the registration, and to the picture.
QJsonObject measureStart(Stage &stage)
{
    std::vector<std::unique_ptr<Subject>> subjects;
    QJsonArray registered;
    QJsonArray shown;
    for (int i = 0; i < 10; ++i) {
        const auto start = Clock::now();
        subjects.push_back(stage.addSubject(i, 10));
        subjects.back()->open(stage.file(QStringLiteral("360-0.mkv")));
        registered.append(since(start));
        const QPoint point = stage.place(i, 10).topLeft() + QPoint(5, 5);
        shown.append(stage.screen.awaitColour(point, Qt::red, start));
        rest(0.2);
    }
    return {{QStringLiteral("registered"), registered}, {QStringLiteral("shown"), shown}};
}
