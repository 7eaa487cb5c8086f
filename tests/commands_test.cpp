#include "tests/fixture.h"

#include <unistd.h>

#include <array>

namespace
{

constexpr int noCommand = 6;
constexpr int volume = MediaPlayerCommandVolume;
constexpr int playState = MediaPlayerCommandPlayState;
constexpr int mute = MediaPlayerCommandMute;
constexpr int seek = MediaPlayerCommandSeek;
constexpr int transform = MediaPlayerCommandTransform;
constexpr int crop = MediaPlayerCommandCrop;
constexpr int opacity = MediaPlayerCommandOpacity;
constexpr int keepAspectRatio = MediaPlayerCommandKeepAspectRatio;

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
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);

        // Each applies only its own operand, and playing the volume too.
        host.record.playState = GST_STATE_PLAYING;
        for (const auto &[command, level, silence, levelThen, silentThen] :
             {std::tuple(volume, 0.25, qint8(-128), 0.25, false),
              {mute, 0.5, qint8(-128), 0.25, true},
              {playState, 0.5, qint8(0), 0.5, true},
              {mute, 1.0, qint8(0), 0.5, false}}) {
            host.record.volume = level;
            host.record.mute = silence;
            QCOMPARE(host.run(command), complete);
            gdouble volumeThen = -1;
            gboolean muteThen = -1;
            g_object_get(host.view()->volumeElement, "volume", &volumeThen, "mute", &muteThen,
                         nullptr);
            QCOMPARE(volumeThen, levelThen);
            QCOMPARE(muteThen, gboolean(silentThen));
        }
        for (const int state : {GST_STATE_PLAYING, GST_STATE_READY, GST_STATE_PAUSED}) {
            QCOMPARE(host.play(state), complete);
            AWAIT_EQUAL(host.state(), state);
        }
        host.record.seekPosition = 6'800'000'000; // goes to the key frame before
        QCOMPARE(host.run(seek), complete);
        AWAIT(qAbs(host.position() - 6'000'000'000) < 100'000'000);
        QCOMPARE(host.play(GST_STATE_NULL), complete); // stop: a paused start
        AWAIT(host.state() == GST_STATE_PAUSED && host.position() == 0);

        // After command 7 nothing is published, but commands go on.
        QCOMPARE(host.run(MediaPlayerCommandRebind), unanswered);
        storeRelaxed(host.record.duration, -1);
        for (int passes = 0; passes < 2; ++passes)
            QCOMPARE(host.run(noCommand), complete);
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
        QVERIFY(!host.videoItem()->isEnabled()); // it would block on input

        const struct {
            int command;
            std::array<int, 4> operands;
            QByteArray picture;
        } steps[] = {{transform, {1, 0, 0}, "GRWB"}, {transform, {0, 1, 0}, "BWRG"},
                     {transform, {1, 1, 0}, "WBGR"}, {transform, {0, 0, 90}, "BRWG"},
                     {transform, {0, 0, 0}, "RGBW"}, {crop, {320, 0, 0, 0}, "GGWW"},
                     {crop, {0, 240, 0, 0}, "BWBW"}, {crop, {0, 0, 320, 0}, "RRBB"},
                     {crop, {0, 0, 0, 240}, "RGRG"}, {keepAspectRatio, {1}, "MMRG"},
                     {keepAspectRatio, {0}, "RGRG"}, {crop, {-100, -100, 0, 0}, "MMMW"},
                     {opacity, {0}, "MMMM"},         {opacity, {1}, "MMMW"}};
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

        host.record.playState = GST_STATE_PLAYING;
        for (const double value : {qQNaN(), qInf(), -qInf(), -1., 11., 1e308}) {
            host.record.volume = host.record.opacity = value;
            for (const int command : {volume, playState, opacity})
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
            for (const int command : {seek, transform, crop, keepAspectRatio, cut})
                QCOMPARE(host.run(command), complete);
        }

        setOperands(host.record, {});
        host.record.volume = host.record.opacity = 1;
        for (const int command : {transform, crop, opacity, keepAspectRatio})
            QCOMPARE(host.run(command), complete);
        QCOMPARE(host.play(GST_STATE_NULL), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > 0);
        QVERIFY(host.strayBytesKept());
    }

    void cornersAreInclusive()
    {
        Host host(Host::Widget);
        host.control = Create(host.widget.get(), 10, 20, 109, 69);
        char key[] = "registerparameter"; // keys are told by their capitals too
        host.control->SysNativeControlSetSettings(key, &host.record);
        QVERIFY(!host.view());
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
