// The endurance run: several players of both kinds in one host get random traffic, round after
// round, and what must hold of them is checked all the time. SOAK_MINUTES says how long (2),
// SOAK_SEED which traffic; a failure prints the seed and the last hundred steps.

#include "fixture.h"
#include "soakWatch.h"

#include <random>

namespace
{

constexpr int stepsPerRound = 120;
constexpr int stepsToRest = 30;
constexpr int roundsToWarmUp = 3; // they fill caches of Qt, GStreamer and Mesa that stay

std::mt19937 choices; // every choice comes from here, and none depends on what the players do
QByteArrayList uris; // good files, one of them under two names, bad ones, and what names no file
int recreations = 0;

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

void makeMedia(const QTemporaryDir &folder)
{
    const QByteArray here = folder.path().toUtf8();
    if (std::system("cd " + here
                    + " && head -c 15000 \"$MEDIA_DIR\"/quadrants.webm >truncated.webm"
                      " && cp /etc/passwd noise.mp4 && mkfifo fifo.mp4")
        != 0)
        fail("the bad files cannot be made");
    for (const char *name : {"truncated.webm", "noise.mp4", "fifo.mp4"})
        uris << "file://" + here + '/' + name;
    for (const char *name : {"quadrants.webm", "yellow.mp4", "./yellow.mp4", "tone.flac", "no.mp4"})
        uris << media(name);
    uris += QByteArrayList {"file:///etc/passwd", "no uri", "", QByteArray(200, 'x')};
}

/// One player with its place in one of the windows.
struct Seat : Player {
    Seat(QWidget *host, QQuickWindow *windows, int number)
        : board(host), quick(windows), index(number)
    {
        connect(this, &Player::polled, this, [this] { check(*this); });
        setControlFactory([this] { return makeControl(); });
        connect(this, &Player::placeReleased, this, &Seat::removePlace);
        loadSomething();
        createControl();
    }

    BasicWidget *makeControl()
    {
        const QRect place(index / 2 * 160, 0, 160, 120);
        if (index % 2 == 0) {
            if (!container) {
                container = new QWidget(board);
                container->setGeometry(place);
                container->show();
            }
            return control = Create(container, 0, 0, place.width() - 1, place.height() - 1);
        }
        if (!item) {
            item = new QQuickItem(quick[0].contentItem());
            item->setPosition(place.topLeft());
            item->setSize(place.size());
        }
        return control = CreateQML(item->window(), item, nullptr, 0, 0, 0, 0);
    }

    void removePlace()
    {
        delete container;
        delete item;
    }

    void loadSomething()
    {
        const QByteArray &uri = uris[pick(0, int(uris.size()) - 1)];
        logStep("%d load %s", index, uri.data());
        load(QString::fromUtf8(uri));
    }

    void command();
    void step();

    QWidget *const board;
    QQuickWindow *const quick; // the first of two
    const int index; ///< even in a widget host
    QPointer<BasicWidget> control;
    QPointer<QWidget> container;
    QPointer<QQuickItem> item;
};

void Seat::command()
{
    MediaPlayerParams &operands = fields();
    operands.volume = operands.opacity = oneOf({0.0, 0.5, 1.0, 10.0, -1.0, qQNaN(), qInf()});
    operands.playState = oneOf({-1, 0, 1, 2, 3, 4, 4, 4, 4, 4, 5, 1'000'000});
    operands.seekPosition = oneOf<qint64>({-1, 0, 500'000'000, 5'000'000'000, INT64_MAX});
    operands.mute = operands.transformBit0 = oneOf<std::int8_t>({0, 1, -1, 90});
    operands.keepAspectRatio = operands.transformBit1 = std::int8_t(pick(0, 1));
    operands.pauseOnSave = operands.resumeOnRestore = std::int8_t(pick(0, 1));
    operands.transformParam = oneOf({0, 90, -45, INT32_MIN});
    operands.cropLeft = operands.cropTop = oneOf<qint16>({0, 0, 40, -40, 2000, -2000});
    operands.cropRight = operands.cropBottom = oneOf<qint16>({0, 0, 30, INT16_MAX, INT16_MIN});
    const int code = oneOf({0, 1, 2, 2, 2, 2, 2, 3, 4, 4, 5, 7, 9, 10, 11, 12, 13, -1, INT32_MAX});
    logStep("%d command %d: volume %g, state %d, seek %lld", index, code, operands.volume,
            operands.playState, qint64(operands.seekPosition));
    request(code);
}

void Seat::step()
{
    const int choice = pick(0, 99);
    if (choice < 40) {
        command();
    } else if (choice < 60) {
        loadSomething();
    } else if (choice < 70) {
        const bool show = pick(0, 1) == 1;
        logStep("%d show %d", index, show);
        showControl(show);
    } else if (choice < 85) {
        const bool placeGoes = pick(0, 3) == 0; // a widget host's place may still hold the picture
        const bool back = pick(0, 3) != 0;
        logStep("%d control destroyed, place goes %d, control back %d", index, placeGoes, back);
        destroyControl();
        if (placeGoes)
            removePlace();
        if (back)
            createControl();
        recreations += back;
    } else if (choice < 91) {
        // Odd, so that no crop leaves a size of zero: GStreamer's item writes a critical about it.
        const QRect place {pick(-20, 20), 0, 2 * pick(0, 99) + 1, 2 * pick(0, 74) + 1};
        const int window = pick(0, 1);
        logStep("%d to window %d, %d x %d", index, window, place.width(), place.height());
        if (item) {
            item->setSize(place.size());
            item->setParentItem(quick[window].contentItem());
        }
        moveControl(place);
    } else if (choice < 94) {
        logStep("%d registered again", index);
        char key[] = "RegisterParameter";
        if (control) {
            control->SysNativeControlSetSettings(key, &fields());
            // A hide that found the player marked for this was not carried out.
            showControl(isShown());
        }
    } else if (choice < 97) {
        const int stall = pick(50, 400);
        logStep("the GUI thread stalls for %d ms", stall);
        QTest::qSleep(stall);
    } else {
        unsigned char &flag = pick(0, 1) == 1 ? enableWorkaround : enableDebug;
        storeRelaxed(flag, !flag);
        logStep("workaround %d, debug %d", enableWorkaround, enableDebug);
    }
}

/// A host from its first window to its last player's end.
void playRound()
{
    QWidget board;
    QQuickWindow quick[2];
    board.setGeometry(0, 0, 320, 120);
    quick[0].setGeometry(0, 150, 320, 120);
    quick[1].setGeometry(0, 300, 320, 120);
    board.show();
    quick[0].show();
    quick[1].show();
    // They delete themselves when they have ended.
    const QPointer<Seat> seats[] {new Seat(&board, quick, 0), new Seat(&board, quick, 1),
                                  new Seat(&board, quick, 2), new Seat(&board, quick, 3)};
    for (int i = 1; i <= stepsPerRound; ++i) {
        seats[pick(0, 3)]->step();
        QTest::qWait(pick(0, 80)); // the traffic's pace, not a wait for anything
        const char *wrong = nullptr;
        for (const auto &seat : seats) {
            const auto isSettled = [&] { return !(wrong = unsettled(*seat)); };
            if (i % stepsToRest == 0 && !QTest::qWaitFor(isSettled, endingBound))
                fail(wrong);
        }
    }
    logStep("all end");
    for (const auto &seat : seats)
        seat->end();
    for (const auto &seat : seats) {
        if (!QTest::qWaitFor([&] { return seat.isNull(); }, endingBound))
            fail("a player does not end");
    }
}

int soak(int, char **)
{
    const QByteArray given = qgetenv("SOAK_SEED");
    const unsigned seed = given.isEmpty() ? std::random_device()() : given.toUInt();
    choices.seed(seed);
    startLog(seed);
    const QTemporaryDir folder;
    makeMedia(folder);
    const QDeadlineTimer end(qMax(2, qEnvironmentVariableIntValue("SOAK_MINUTES")) * 60'000);
    for (int round = 0; round <= roundsToWarmUp || !end.hasExpired(); ++round) {
        playRound();
        checkLevels(round < roundsToWarmUp);
    }
    qDebug() << recreations << "re-creations";
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("GST_TRACERS", "leaks(filters=\"GstElement,GstPad,GstBus,GstTask,GstGLContextGLX\")");
    return runPlayerTest(argc, argv, soak);
}
