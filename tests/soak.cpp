// The endurance run: several players of both kinds in one host get random traffic, round after
// round, and what must hold of them is checked all the time. SOAK_MINUTES says how long (2),
// SOAK_SEED which traffic; a failure prints the seed and the last hundred steps.

#include "boundary/MediaPlayerFactories.h"
#include "diagnostics/MediaPlayerDiagnostics.h"
#include "soakWatch.h"
#include "view/MediaPlayerView.h"

#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <random>

extern "C" {
BasicWidget *Create(QWidget *, int, int, int, int);
BasicWidget *CreateQML(QQuickWindow *, QQuickItem *, QObject *, int, int, int, int);
}

namespace
{

constexpr int playersPerRound = 4;
constexpr int stepsPerRound = 120;
constexpr int endingBound = 60'000; // ms
// The first rounds fill caches of Qt, GStreamer and Mesa that stay.
constexpr int roundsToWarmUp = 3;
// Their heap moves this much to and fro; a leak of every round passes it before long.
// Mesa's software renderer keeps about 0.7 MiB of a GL context that has ended, and a round ends
// some six of them. A pipeline that is left behind would be 8 MiB each.
constexpr std::size_t heapPerRound = 8 << 20;

// Threads of GLib's pools come and go with one descriptor each, whatever the players do.
constexpr int descriptorTolerance = 8;

constexpr std::size_t heapTolerance = 12 << 20;

std::mt19937 choices; // every choice comes from here, and none depends on what the players do

int pick(int low, int high)
{
    // Not std::uniform_int_distribution, whose numbers depend on the library.
    return low + int(choices() % std::uint32_t(high - low + 1));
}

template <typename T>
T oneOf(std::initializer_list<T> values)
{
    return values.begin()[pick(0, int(values.size()) - 1)];
}

QString mediaFile()
{
    const QString folder = QStringLiteral("file://") + qEnvironmentVariable("MEDIA_DIR");
    const QString trouble = QStringLiteral("file:///tmp/soak/");
    return oneOf<QString>(
        {folder + QStringLiteral("/quadrants.webm"), folder + QStringLiteral("/yellow.mp4"),
         folder + QStringLiteral("/tone.flac"),
         folder + QStringLiteral("/../media/yellow.mp4"), // another key
         trouble + QStringLiteral("truncated.webm"), trouble + QStringLiteral("noise.mp4"),
         trouble + QStringLiteral("fifo.mp4"), trouble + QStringLiteral("absent.webm"),
         trouble + QStringLiteral("refused.txt"), QStringLiteral("no uri"), QString(),
         QString(200, QLatin1Char('x'))});
}

/// One player with its place in one of the host's windows.
class Seat : public QObject
{
public:
    Seat(QWidget *board, const QList<QQuickWindow *> &screens, int number)
        : widgetBoard(board)
        , quickWindows(screens)
        , index(number)
        , player(new Player)
        , watch(*player)
    {
        player->setControlFactory([this] { return makeControl(); });
        connect(player, &Player::placeReleased, this, &Seat::release);
        connect(player, &Player::polled, this, [this] { watch.check(); });
    }

    bool isWidget() const { return index % 2 == 0; }

    BasicWidget *makeControl()
    {
        const QRect area(index / 2 % 2 * 160, 0, 160, 120);
        if (isWidget()) {
            if (!container) {
                container = new QWidget(widgetBoard);
                container->setGeometry(area);
                container->show();
            }
            control = Create(container, 0, 0, area.width() - 1, area.height() - 1);
        } else {
            if (!item) {
                item = new QQuickItem(quickWindows[0]->contentItem());
                item->setPosition(area.topLeft());
                item->setSize(area.size());
            }
            control = CreateQML(item->window(), item, nullptr, 0, 0, 0, 0);
        }
        return control;
    }

    void release()
    {
        delete container;
        delete item;
    }

    void step();

    QWidget *const widgetBoard;
    const QList<QQuickWindow *> quickWindows;
    const int index;
    QPointer<Player> player;
    SoakWatch watch;
    QPointer<BasicWidget> control;
    QPointer<QWidget> container;
    QPointer<QQuickItem> item;

private:
    void command(int code);
    void load(const QString &uri);
};

void Seat::command(int code)
{
    MediaPlayerParams &record = player->fields();
    const double real = oneOf({0.0, 0.5, 1.0, 10.0, -1.0, 11.0, std::nan(""), HUGE_VAL});
    const int whole = oneOf({0, 1, -1, 3, 90, 127});
    record.volume = real;
    record.opacity = real;
    record.playState = oneOf({-1, 0, 1, 2, 3, 4, 4, 4, 5, 1'000'000});
    record.seekPosition = oneOf<qint64>({-1, 0, 500'000'000, 5'000'000'000, INT64_MAX});
    record.mute = record.keepAspectRatio = record.transformBit0 = std::int8_t(whole);
    record.transformBit1 = record.pauseOnSave = record.resumeOnRestore = std::int8_t(pick(0, 1));
    record.transformParam = oneOf({0, 90, -45, INT32_MIN});
    record.cropLeft = oneOf<qint16>({0, 0, 40, -40, 2000, -2000});
    record.cropBottom = oneOf<qint16>({0, 0, 30, -30, INT16_MAX, INT16_MIN});
    SoakLog::step(QStringLiteral("%1 command %2: %3, %4, state %5, seek %6, crop %7 %8")
                      .arg(index)
                      .arg(code)
                      .arg(real)
                      .arg(whole)
                      .arg(record.playState)
                      .arg(record.seekPosition)
                      .arg(record.cropLeft)
                      .arg(record.cropBottom));
    player->request(code);
}

void Seat::load(const QString &uri)
{
    SoakLog::step(QStringLiteral("%1 load %2").arg(index).arg(uri));
    player->load(uri);
}

void Seat::step()
{
    const int choice = pick(0, 99);
    const auto log = [this](const char *what, int number = 0) {
        SoakLog::step(QStringLiteral("%1 %2 %3").arg(index).arg(QLatin1String(what)).arg(number));
    };
    if (choice < 30) {
        command(oneOf({0, 1, 2, 2, 2, 3, 4, 4, 5, 7, 9, 10, 11, 12, 13, -1, INT32_MAX}));
    } else if (choice < 50) {
        load(mediaFile());
    } else if (choice < 60) {
        log("play");
        player->play();
    } else if (choice < 70) {
        const bool show = pick(0, 1) == 1;
        log("show", show);
        player->showControl(show);
    } else if (choice < 85) {
        const bool placeGoes = pick(0, 3) == 0; // a widget host's place may still hold the picture
        const bool back = pick(0, 3) != 0;
        log("re-create, place goes", placeGoes);
        player->destroyControl();
        if (placeGoes)
            release();
        if (back)
            player->createControl();
    } else if (choice < 90) {
        const QSize size(pick(1, 200), pick(1, 150));
        log("size", size.width());
        if (item)
            item->setSize(size);
        player->moveControl(QRect(QPoint(pick(-20, 20), 0), size));
    } else if (choice < 93) {
        const int screen = pick(0, 1);
        log("to window", screen);
        if (item)
            item->setParentItem(quickWindows[screen]->contentItem());
    } else if (choice < 96) {
        log("registered twice, shown with 2, a key in the wrong case");
        char key[] = "RegisterParameter";
        char wrong[] = "registerparameter";
        if (control) {
            control->SysNativeControlSetSettings(key, &player->fields());
            control->SysNativeControlSetSettings(wrong, &player->fields());
        }
    } else if (choice < 98) {
        log("workaround", enableWorkaround = !enableWorkaround);
    } else {
        log("debug", enableDebug = !enableDebug);
    }
}

void makeTroublesomeFiles()
{
    QDir(QStringLiteral("/tmp")).mkpath(QStringLiteral("soak"));
    const auto write = [](const char *name, const QByteArray &content) {
        QFile file(QStringLiteral("/tmp/soak/") + QLatin1String(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            SoakLog::fail(QStringLiteral("cannot write ") + file.fileName());
    };
    QFile good(qEnvironmentVariable("MEDIA_DIR") + QStringLiteral("/quadrants.webm"));
    if (!good.open(QIODevice::ReadOnly))
        SoakLog::fail(QStringLiteral("MEDIA_DIR has no quadrants.webm"));
    write("truncated.webm", good.read(good.size() / 3));
    write("noise.mp4", QByteArray(20'000, '\x5a'));
    write("refused.txt", "no media");
    mkfifo("/tmp/soak/fifo.mp4", 0600);
}

/// A host from its first window to its last player's end. Returns how often it made a control anew.
void playRound()
{
    enableWorkaround = enableDebug = 0;
    QWidget board;
    board.resize(320, 120);
    board.show();
    QQuickWindow first;
    QQuickWindow second;
    for (QQuickWindow *window : {&first, &second}) {
        window->setGeometry(0, 150, 320, 120);
        window->show();
    }
    std::vector<std::unique_ptr<Seat>> seats;
    for (int i = 0; i < playersPerRound; ++i) {
        seats.push_back(std::make_unique<Seat>(&board, QList<QQuickWindow *> {&first, &second}, i));
        seats.back()->player->load(mediaFile());
        seats.back()->player->createControl();
    }
    for (int i = 0; i < stepsPerRound; ++i) {
        Seat &seat = *seats[std::size_t(pick(0, playersPerRound - 1))];
        seat.step();
        if (pick(0, 19) == 0) {
            const int stall = pick(50, 400);
            SoakLog::step(QStringLiteral("the GUI thread stalls for %1 ms").arg(stall));
            usleep(useconds_t(stall) * 1000);
        }
        QTest::qWait(pick(0, 80)); // the traffic's pace, not a wait for anything
    }
    SoakLog::step(QStringLiteral("all end"));
    for (const auto &seat : seats)
        seat->player->end();
    for (const auto &seat : seats) {
        if (!QTest::qWaitFor([&] { return seat->player.isNull(); }, endingBound))
            SoakLog::fail(QStringLiteral("player %1 does not end").arg(seat->index));
    }
}

/// Threads of pools and deferred deletions take a moment; what stays is left behind.
void checkLevels(const SoakLevels &allowed)
{
    SoakLevels now;
    const bool back = QTest::qWaitFor(
        [&] {
            now = SoakLevels::now();
            return now.threads <= allowed.threads && now.descriptors <= allowed.descriptors
                && now.gstObjects <= allowed.gstObjects && now.heap <= allowed.heap;
        },
        endingBound);
    if (!back)
        SoakLog::fail(
            QStringLiteral("left behind: %1; allowed: %2").arg(now.text(), allowed.text()));
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("GST_TRACERS"))
        qputenv("GST_TRACERS", "leaks(filters=\"GstElement,GstPad,GstBus,GstTask\")");
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    const std::uint32_t seed = qEnvironmentVariableIsSet("SOAK_SEED")
        ? qEnvironmentVariable("SOAK_SEED").toUInt()
        : std::random_device()();
    const int minutes = qMax(1, qEnvironmentVariableIntValue("SOAK_MINUTES"));
    choices.seed(seed);
    SoakLog::start(seed);
    makeTroublesomeFiles();
    std::fprintf(stderr, "SOAK_SEED=%u, %d minutes\n", seed, minutes);

    SoakLevels allowed;
    QElapsedTimer clock;
    clock.start();
    int round = 0;
    for (; round <= roundsToWarmUp || clock.elapsed() < minutes * 60'000; ++round) {
        playRound();
        const SoakLevels now = SoakLevels::now();
        std::fprintf(stderr, "round %d: %s\n", round, qPrintable(now.text()));
        if (round < roundsToWarmUp) {
            allowed = {qMax(allowed.threads, now.threads), now.descriptors + descriptorTolerance,
                       now.gstObjects, now.heap + heapTolerance};
            continue;
        }
        allowed.heap += heapPerRound;
        checkLevels(allowed);
    }
    std::fprintf(stderr, "%d rounds\n", round);
    return 0;
}
