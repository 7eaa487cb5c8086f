#include "tests/fixture.h"

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

/// The type of the stream that arrives at the element; empty while there is none.
QByteArray streamInto(GstElement *element)
{
    GstPad *pad = element ? gst_element_get_static_pad(element, "sink") : nullptr;
    GstCaps *caps = pad ? gst_pad_get_current_caps(pad) : nullptr;
    QByteArray type;
    if (caps)
        type = gst_structure_get_name(gst_caps_get_structure(caps, 0));
    gst_clear_caps(&caps);
    gst_clear_object(&pad);
    return type;
}

void kindsAndMedia()
{
    QTest::addColumn<QByteArray>("file");
    forBothKinds([](const char *name, Host::Kind kind) {
        for (const char *file : {"quadrants.webm", "yellow.mp4", "tone.flac"})
            QTest::addRow("%s %s", name, file) << QByteArray(file) << kind;
    });
}

using Operands = std::function<void(MediaPlayerParams &)>;

Operands transform(qint8 bit0, qint8 bit1, int angle)
{
    return [=](MediaPlayerParams &record) {
        record.transformBit0 = bit0;
        record.transformBit1 = bit1;
        record.transformParam = angle;
    };
}

Operands crop(qint16 left, qint16 top, qint16 right, qint16 bottom)
{
    return [=](MediaPlayerParams &record) {
        record.cropLeft = left;
        record.cropTop = top;
        record.cropRight = right;
        record.cropBottom = bottom;
    };
}

Operands opacity(double value)
{
    return [=](MediaPlayerParams &record) { record.opacity = value; };
}

constexpr double doubles[] = {std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              -1,
                              11,
                              1e308};

} // namespace

class CommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void eachCommandDoesItsWork_data() { kindsAndMedia(); }
    void eachCommandDoesItsWork()
    {
        QFETCH(QByteArray, file);
        QFETCH(Host::Kind, kind);
        const bool hasVideo = !file.endsWith("flac");
        Host host(kind);
        host.open(media(file));
        AWAIT_EQUAL(host.state(), 3);
        AWAIT(qAbs(host.duration() - 10 * second) < second);
        AWAIT_EQUAL(int(loadRelaxed(host.record.attached)), 1);
        QCOMPARE(host.position(), 0);

        host.record.volume = 0.25;
        QCOMPARE(host.run(MediaPlayerCommandVolume), complete);
        QCOMPARE(propertyOf<double>(host.view()->volumeElement, "volume"), 0.25);
        for (const qint8 mute : std::initializer_list<qint8> {1, 0, -128}) {
            host.record.mute = mute;
            QCOMPARE(host.run(MediaPlayerCommandMute), complete);
            QCOMPARE(propertyOf<gboolean>(host.view()->volumeElement, "mute"), mute != 0);
        }

        host.record.volume = 0.5;
        QCOMPARE(host.play(4), complete);
        QCOMPARE(propertyOf<double>(host.view()->volumeElement, "volume"), 0.5);
        AWAIT_EQUAL(host.state(), 4);
        AWAIT(host.position() > 0);
        QCOMPARE(streamInto(host.view()->glUpload), hasVideo ? "video/x-raw" : "");
        QCOMPARE(streamInto(host.view()->volumeElement), file.endsWith("mp4") ? "" : "audio/x-raw");

        host.record.seekPosition = 6 * second;
        QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
        AWAIT(host.position() > 59 * second / 10);
        QCOMPARE(host.play(3), complete);
        AWAIT_EQUAL(host.state(), 3);
        QVERIFY(blockForOnePass(host));
        const qint64 paused = host.position();
        QVERIFY(blockForOnePass(host));
        QCOMPARE(host.position(), paused);

        QCOMPARE(host.play(2), complete);
        AWAIT_EQUAL(host.state(), 2);
        QCOMPARE(host.play(4), complete);
        AWAIT_EQUAL(host.state(), 4);
        QCOMPARE(host.play(1), complete); // stop: a paused start
        QCOMPARE(host.pipelineStates(), {3});
        AWAIT_EQUAL(host.position(), 0);

        host.record.keepAspectRatio = 1;
        QCOMPARE(host.run(MediaPlayerCommandKeepAspectRatio), complete);
        if (hasVideo)
            QVERIFY(propertyOf<gboolean>(host.view()->videoSink, "force-aspect-ratio"));

        constexpr int most = std::numeric_limits<int>::max();
        for (const int unknown : {5, 6, 8, 13, -1, most, -most - 1})
            QCOMPARE(host.run(unknown), complete);

        // After command 7 nothing is published, but commands go on.
        QCOMPARE(host.run(MediaPlayerCommandRebind), unanswered);
        storeRelaxed(host.record.duration, -1);
        QCOMPARE(host.run(6), complete);
        QCOMPARE(host.run(6), complete);
        QCOMPARE(host.duration(), -1);
        QVERIFY(host.strayBytesKept());
    }

    void pictureFollowsCommands_data() { addKinds(); }
    void pictureFollowsCommands()
    {
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open(media("quadrants.webm"));
        // The first frame shows before anything is played.
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        AWAIT_EQUAL(host.state(), 3);

        const struct {
            int command;
            Operands operands;
            QByteArray picture;
        } steps[] = {
            {9, transform(1, 0, 0), "GRWB"},   {9, transform(0, 1, 0), "BWRG"},
            {9, transform(1, 1, 0), "WBGR"},   {9, transform(0, 0, 90), "BRWG"},
            {9, transform(0, 0, -90), "GWRB"}, {9, transform(0, 0, 0), "RGBW"},
            {10, crop(320, 0, 0, 0), "GGWW"},  {10, crop(0, 240, 0, 0), "BWBW"},
            {10, crop(0, 0, 320, 0), "RRBB"},  {10, crop(0, 0, 0, 240), "RGRG"},
            {10, crop(-100, 0, 0, 0), "MGMW"}, {10, crop(0, -100, 0, 0), "MMBW"},
            {10, crop(0, 0, 0, 0), "RGBW"},    {11, opacity(0), "MMMM"},
            {11, opacity(1), "RGBW"},
        };
        for (const auto &step : steps) {
            step.operands(host.record);
            QCOMPARE(host.run(step.command), complete);
            AWAIT_EQUAL(host.picture(), step.picture);
        }
    }

    void pictureKeepsItsShape_data() { addKinds(); }
    void pictureKeepsItsShape()
    {
        QFETCH(Host::Kind, kind);
        // The picture has a third of the room's shape; a border on the left moves its middle.
        Host host(kind, {400, 120});
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");
        crop(-60, 0, 0, 0)(host.record);
        QCOMPARE(host.run(MediaPlayerCommandCrop), complete);
        for (const qint8 keep : std::initializer_list<qint8> {1, 0}) {
            host.record.keepAspectRatio = keep;
            QCOMPARE(host.run(MediaPlayerCommandKeepAspectRatio), complete);
            AWAIT_EQUAL(host.picture(), keep ? "MGMW" : "RGBW");
        }
    }

    void endOfStreamRewinds_data() { kindsAndMedia(); }
    void endOfStreamRewinds()
    {
        QFETCH(QByteArray, file);
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open(media(file));
        AWAIT_EQUAL(host.state(), 3);
        for (int run = 0; run < 2; ++run) {
            host.record.seekPosition = 19 * second / 2;
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
            QCOMPARE(host.play(4), complete);
            AWAIT(host.position() > 89 * second / 10);
            AWAIT(host.state() == 3 && host.position() == 0);
            QCOMPARE(host.pipelineStates(), {3});
            if (file.startsWith("quadrants"))
                AWAIT_EQUAL(host.picture(), "RGBW");
        }
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);
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
        QCOMPARE(area->geometry(), QRect(0, 0, 320, 240));
        AWAIT_EQUAL(area->rootObject()->size(), QSizeF(320, 240));
    }

    void nothingInTheRecordBreaksIt_data() { addKinds(); }
    void nothingInTheRecordBreaksIt()
    {
        QFETCH(Host::Kind, kind);
        constexpr qint64 never = std::numeric_limits<qint64>::max();
        constexpr int most = std::numeric_limits<int>::max();
        constexpr qint16 wide = std::numeric_limits<qint16>::max();
        Host host(kind);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");

        for (const double value : doubles) {
            host.record.volume = value;
            QCOMPARE(host.run(MediaPlayerCommandVolume), complete);
            QCOMPARE(host.play(4), complete);
            opacity(value)(host.record);
            QCOMPARE(host.run(MediaPlayerCommandOpacity), complete);
        }
        for (const qint64 target : {-never - 1, qint64(-1), qint64(0), never, never - 1,
                                    host.duration(), host.duration() + 1}) {
            host.record.seekPosition = target;
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
        }
        for (const int state : {-most - 1, -1, 0, 5, 77, most})
            QCOMPARE(host.play(state), complete);
        for (const auto &margins :
             {crop(wide, wide, wide, wide), crop(-wide, -wide, -wide, -wide),
              crop(-160, -120, -160, -120), crop(wide, -wide - 1, -wide - 1, wide)}) {
            margins(host.record);
            QCOMPARE(host.run(MediaPlayerCommandCrop), complete);
        }
        for (const auto &flips : {transform(127, 127, most), transform(-128, -128, -most - 1)}) {
            flips(host.record);
            QCOMPARE(host.run(MediaPlayerCommandTransform), complete);
        }

        host.record.volume = 1;
        crop(0, 0, 0, 0)(host.record);
        transform(0, 0, 0)(host.record);
        opacity(1)(host.record);
        for (const int command :
             {MediaPlayerCommandTransform, MediaPlayerCommandCrop, MediaPlayerCommandOpacity})
            QCOMPARE(host.run(command), complete);
        QCOMPARE(host.play(1), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);
        QVERIFY(host.strayBytesKept());
    }
};

PLAYER_TEST_MAIN(CommandsTest)
#include "commands_test.moc"
