#include "tests/fixture.h"

#include <unistd.h>

#include <array>

namespace
{

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

    void mediaFollowsCommands_data() { addKinds(); }
    void mediaFollowsCommands()
    {
        QFETCH(Host::Kind, kind);
        Captured errors(STDERR_FILENO);
        Host host(kind);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.state(), 3);

        // Each applies only its own operand, and playing the volume too.
        host.record.playState = 4;
        for (const auto &[command, volume, mute, volumeThen, muteThen] :
             {std::tuple(1, 0.25, qint8(-128), 0.25, false),
              {3, 0.5, qint8(-128), 0.25, true},
              {2, 0.5, qint8(0), 0.5, true},
              {3, 1.0, qint8(0), 0.5, false}}) {
            host.record.volume = volume;
            host.record.mute = mute;
            QCOMPARE(host.run(command), complete);
            gdouble level = -1;
            gboolean silent = -1;
            g_object_get(host.view()->volumeElement, "volume", &level, "mute", &silent, nullptr);
            QCOMPARE(level, volumeThen);
            QCOMPARE(silent, gboolean(muteThen));
        }
        for (const int state : {4, 2, 3}) {
            QCOMPARE(host.play(state), complete);
            AWAIT_EQUAL(host.state(), state);
        }
        host.record.seekPosition = 6'000'000'000;
        QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
        AWAIT(qAbs(host.position() - host.record.seekPosition) < 100'000'000);
        QCOMPARE(host.play(1), complete); // stop: a paused start
        AWAIT(host.state() == 3 && host.position() == 0);

        // After command 7 nothing is published, but commands go on.
        QCOMPARE(host.run(MediaPlayerCommandRebind), unanswered);
        storeRelaxed(host.record.duration, -1);
        for (int passes = 0; passes < 2; ++passes)
            QCOMPARE(host.run(6), complete);
        QCOMPARE(host.duration(), -1);
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
        Host host(Host::Quick);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");

        host.record.playState = 4;
        for (const double value : {qQNaN(), qInf(), -qInf(), -1., 11., 1e308}) {
            host.record.volume = host.record.opacity = value;
            for (const int command : {1, 2, 11})
                QCOMPARE(host.run(command), complete);
        }
        // As a time and, cut off, as every other operand and as the number of a command.
        for (const qint64 number : std::initializer_list<qint64> {
                 INT64_MIN, INT32_MIN, INT16_MIN, -160, -1, 5, 8, 127, 128, INT16_MAX, INT32_MAX,
                 11'000'000'000, INT64_MAX - 1, INT64_MAX}) {
            const int cut = int(number);
            setOperands(host.record, {cut, cut, cut, cut});
            host.record.seekPosition = number;
            QCOMPARE(host.play(cut), complete);
            for (const int command : {4, 9, 10, 12, cut})
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
