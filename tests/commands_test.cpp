#include "tests/fixture.h"

#include <unistd.h>

#include <array>
#include <limits>

namespace
{

constexpr qint64 second = 1'000'000'000;

template <typename T>
T propertyOf(GstElement *element, const char *name)
{
    T value {};
    g_object_get(element, name, &value, nullptr);
    return value;
}

/// The operands of the commands that change the picture; each command reads only its own.
void setOperands(MediaPlayerParams &record, const std::array<int, 4> &numbers)
{
    record.transformBit0 = record.keepAspectRatio = qint8(numbers[0]);
    record.transformBit1 = qint8(numbers[1]);
    record.transformParam = numbers[2];
    record.cropLeft = qint16(numbers[0]);
    record.cropTop = qint16(numbers[1]);
    record.cropRight = qint16(numbers[2]);
    record.cropBottom = qint16(numbers[3]);
    record.opacity = numbers[0];
}

} // namespace

class CommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void mediaFollowsCommands_data()
    {
        QTest::addColumn<Host::Kind>("kind");
        QTest::newRow("quadrants.webm") << Host::Widget;
        QTest::newRow("yellow.mp4") << Host::Quick; // has no sound
        QTest::newRow("tone.flac") << Host::Quick;
    }
    void mediaFollowsCommands()
    {
        QFETCH(Host::Kind, kind);
        Captured errors(STDERR_FILENO);
        Host host(kind);
        host.open(media(QTest::currentDataTag()));
        AWAIT_EQUAL(host.state(), 3);
        AWAIT(qAbs(host.duration() - 10 * second) < second);
        AWAIT_EQUAL(int(loadRelaxed(host.record.attached)), 1);
        QCOMPARE(host.position(), 0);

        GstElement *const volumeElement = host.view()->volumeElement;
        host.record.volume = 0.25;
        QCOMPARE(host.run(MediaPlayerCommandVolume), complete);
        QCOMPARE(propertyOf<double>(volumeElement, "volume"), 0.25);
        for (const qint8 mute : std::initializer_list<qint8> {1, 0, -128}) {
            host.record.mute = mute;
            QCOMPARE(host.run(MediaPlayerCommandMute), complete);
            QCOMPARE(propertyOf<gboolean>(volumeElement, "mute"), mute != 0);
        }
        host.record.volume = 0.5;
        QCOMPARE(host.play(4), complete);
        QCOMPARE(propertyOf<double>(volumeElement, "volume"), 0.5);
        AWAIT(host.state() == 4 && host.position() > 0);
        QCOMPARE(host.play(3), complete);
        AWAIT_EQUAL(host.state(), 3);
        host.record.seekPosition = 6 * second;
        QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
        AWAIT(qAbs(host.position() - 6 * second) < second / 10);
        const qint64 paused = host.position();
        QVERIFY(blockForOnePass(host));
        QCOMPARE(host.position(), paused);
        for (const int state : {2, 4}) {
            QCOMPARE(host.play(state), complete);
            AWAIT_EQUAL(host.state(), state);
        }
        QCOMPARE(host.play(1), complete); // stop: a paused start
        AWAIT(host.state() == 3 && host.position() == 0);

        // After command 7 nothing is published, but commands go on.
        QCOMPARE(host.run(MediaPlayerCommandRebind), unanswered);
        storeRelaxed(host.record.duration, -1);
        for (int passes = 0; passes < 2; ++passes)
            QCOMPARE(host.run(6), complete);
        QCOMPARE(host.duration(), -1);
        QVERIFY(host.strayBytesKept());
        QCOMPARE(errors.text(), "");
    }

    void pictureFollowsCommands_data() { addKinds(); }
    void pictureFollowsCommands()
    {
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW"); // the first frame, before anything is played

        const struct {
            int command;
            std::array<int, 4> operands;
            QByteArray picture;
        } steps[] = {{9, {1, 0, 0}, "GRWB"},
                     {9, {0, 1, 0}, "BWRG"},
                     {9, {1, 1, 0}, "WBGR"},
                     {9, {0, 0, 90}, "BRWG"},
                     {9, {0, 0, 0}, "RGBW"},
                     {10, {320, 0, 0, 0}, "GGWW"},
                     {10, {0, 240, 0, 0}, "BWBW"},
                     {10, {0, 0, 320, 0}, "RRBB"},
                     {10, {0, 0, 0, 240}, "RGRG"},
                     {12, {1}, "MMRG"},
                     {12, {0}, "RGRG"},
                     {10, {-100, -100, 0, 0}, "MMMW"},
                     {11, {0}, "MMMM"},
                     {11, {1}, "MMMW"}};
        for (const auto &step : steps) {
            setOperands(host.record, step.operands);
            QCOMPARE(host.run(step.command), complete);
            AWAIT_EQUAL(host.picture(), step.picture);
        }
    }

    void nothingInTheRecordBreaksIt()
    {
        constexpr auto never = std::numeric_limits<qint64>::max();
        constexpr int most = std::numeric_limits<int>::max();
        constexpr double infinite = std::numeric_limits<double>::infinity();
        Host host(Host::Quick);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");

        for (const double value : {qQNaN(), infinite, -infinite, -1., 11., 1e308}) {
            host.record.volume = host.record.opacity = value;
            QCOMPARE(host.play(4), complete);
            for (const int command : {1, 11})
                QCOMPARE(host.run(command), complete);
        }
        for (const qint64 target : {-never - 1, qint64(-1), never, never - 1, 11 * second}) {
            host.record.seekPosition = target;
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
        }
        // Also as states and as the numbers of commands.
        for (const int number : {-most - 1, -0x8000, -160, -1, 5, 8, 127, 128, 0x7fff, most}) {
            setOperands(host.record, {number, number, number, number});
            QCOMPARE(host.play(number), complete);
            for (const int command : {9, 10, 12, number})
                QCOMPARE(host.run(command), complete);
        }

        setOperands(host.record, {});
        host.record.volume = host.record.opacity = 1;
        for (const int command : {9, 10, 11, 12})
            QCOMPARE(host.run(command), complete);
        QCOMPARE(host.play(1), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);
        QVERIFY(host.strayBytesKept());
    }

    void cornersAreInclusive()
    {
        Host host(Host::Widget);
        host.control = Create(host.widget.get(), 10, 20, 109, 69);
        auto *area = host.widget->findChild<QQuickWidget *>();
        QCOMPARE(area->geometry(), QRect(10, 20, 100, 50));
        QCOMPARE(area->rootObject()->size(), QSizeF(100, 50));
        host.control->SysNativeControlShow(1);
        host.control->SysNativeControlMove(0, 0, 319, 239);
        AWAIT_EQUAL(area->rootObject()->size(), QSizeF(320, 240));
    }
};

PLAYER_TEST_MAIN(CommandsTest)
#include "commands_test.moc"
