#include "tests/fixture.h"

namespace
{

const QString loading = QStringLiteral("Loading media ...");
const QString noMedia = QStringLiteral("no media");
const QString unsupported = QStringLiteral("unsupported media");
const QString keepLast = QStringLiteral("unsupported media\nkeep last file");
const QString errorText = QStringLiteral("Error loading media");

} // namespace

class LoadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void aReturnBuildsNothing_data() { addKinds(); }
    void aReturnBuildsNothing()
    {
        QFETCH(Host::Kind, kind);
        const QByteArray quadrants = media("quadrants.webm");
        Host host(kind);
        host.open(quadrants);
        AWAIT_EQUAL(host.picture(), "RGBW");
        GstElement *const first = host.view()->pipeline;

        QCOMPARE(host.load(media("yellow.mp4")), complete);
        AWAIT_EQUAL(host.picture(), "YYYY");
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);

        QCOMPARE(host.load(quadrants), complete);
        QCOMPARE(host.view()->pipeline, first);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({3, 2}));
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        AWAIT_EQUAL(host.position(), 0);

        // The same file again, while it plays, is left alone.
        QCOMPARE(host.play(4), complete);
        QCOMPARE(host.load(quadrants), complete);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({4, 2}));
        AWAIT_EQUAL(host.overlay(), QString());

        QCOMPARE(host.load(media("tone.flac")), complete);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({3, 2, 2}));
        QVERIFY(!host.view()->videoSink && !host.view()->videoItem);

        // Another spelling is another entry.
        QCOMPARE(host.load(media("%71uadrants.webm")), complete);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({3, 2, 2, 2}));
        AWAIT_EQUAL(host.picture(), "RGBW");
    }

    void aNameThatIsNoneIsRefused()
    {
        const QByteArray film = media("quadrants.webm");
        const struct {
            QByteArray name;
            QString textAtFirst, textOverAFile;
        } rows[] = {{QByteArray("file:///letter.txt\0", 19), unsupported, keepLast},
                    {QByteArray(81, '\xff'), noMedia, noMedia}}; // has no end
        for (const auto &[name, textAtFirst, textOverAFile] : rows) {
            Host host(Host::Quick);
            host.open({});
            host.setFileName(name);
            QCOMPARE(host.run(MediaPlayerCommandLoad), failed);
            AWAIT_EQUAL(host.overlay(), textAtFirst);
            QVERIFY(!host.view()->pipeline);

            QCOMPARE(host.load(film), complete);
            AWAIT_EQUAL(host.picture(), "RGBW");
            QCOMPARE(host.play(4), complete);
            host.setFileName(name);
            QCOMPARE(host.run(MediaPlayerCommandLoad), failed);
            AWAIT_EQUAL(host.overlay(), textOverAFile);
            const bool restored = textOverAFile == keepLast; // paused, and named in the record
            AWAIT_EQUAL(host.pipelineStates(), QList<int>({restored ? 3 : 4}));
            QCOMPARE(host.record.fileName == film, restored);
            QVERIFY(host.strayBytesKept());
        }
    }

    void theOverlayTellsWhatThereIs_data() { addKinds(); }
    void theOverlayTellsWhatThereIs()
    {
        QFETCH(Host::Kind, kind);
        Host host(kind, {320, 240}, Host::Hidden);
        host.open(media("tone.flac"));
        AWAIT_EQUAL(host.state(), 3);
        AWAIT_EQUAL(host.overlay(), loading);
        QCOMPARE(host.play(4), complete);
        AWAIT_EQUAL(host.overlay(), QString());

        // A video waits for its item, and that for a window on the screen.
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(host.state(), 2);
        AWAIT_EQUAL(host.overlay(), loading);
        host.setShown(true);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        AWAIT_EQUAL(host.state(), 3);
        host.load(media("missing.webm"));
        AWAIT_EQUAL(host.overlay(), errorText);
    }
};

PLAYER_TEST_MAIN(LoadingTest)
#include "loading_test.moc"
