#include "tests/fixture.h"

class LoadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void filesFollowEachOther_data() { addKinds(); }
    void filesFollowEachOther()
    {
        QFETCH(Host::Kind, kind);
        const QString loading = QStringLiteral("Loading media ...");
        const QByteArray quadrants = media("quadrants.webm");
        constexpr int ready = GST_STATE_READY;
        Host host(kind, {320, 240}, Host::Hidden);
        host.open(media("tone.flac"));
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
        QVERIFY(blockForOnePass(host)); // all of its messages have been heard
        QCoreApplication::processEvents();
        QCOMPARE(host.overlay(), loading);
        int buffer = 0;
        g_object_get(host.view()->source, "buffer-size", &buffer, nullptr);
        QCOMPARE(buffer, 10 << 20);
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT_EQUAL(host.overlay(), QString());

        // A video waits for its item, and that for a window on the screen.
        QCOMPARE(host.load(quadrants), complete);
        AWAIT_EQUAL(host.state(), GST_STATE_READY);
        AWAIT_EQUAL(host.overlay(), loading);
        host.setShown(true);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
        GstElement *const first = host.view()->pipeline;

        QCOMPARE(host.load(media("yellow.mp4")), complete);
        AWAIT_EQUAL(host.picture(), "YYYY");
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > 0);

        // A return builds nothing.
        QCOMPARE(host.load(quadrants), complete);
        QCOMPARE(host.view()->pipeline, first);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({GST_STATE_PAUSED, ready, ready}));
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        AWAIT_EQUAL(host.position(), 0);

        // The same file again, while it plays, is left alone.
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        QCOMPARE(host.load(quadrants), complete);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({GST_STATE_PLAYING, ready, ready}));
        AWAIT_EQUAL(host.overlay(), QString());

        QCOMPARE(host.load(media("tone.flac")), complete);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({GST_STATE_PAUSED, ready, ready}));
        QVERIFY(!host.view()->videoSink && !host.view()->videoItem);

        // Another spelling is another entry.
        QCOMPARE(host.load(media("%71uadrants.webm")), complete);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({GST_STATE_PAUSED, ready, ready, ready}));
        AWAIT_EQUAL(host.picture(), "RGBW");
        host.load(media("missing.webm"));
        AWAIT_EQUAL(host.overlay(), QLatin1String("Error loading media"));
    }

    void aNameThatIsNoneIsRefused()
    {
        QByteArray film = media("quadrants.webm");
        film.insert(strlen("file://"), QByteArray(80 - film.size(), '/')); // fills the field
        for (const bool isText : {true, false}) { // a text file, or a name that has no end
            const QByteArray name =
                isText ? QByteArray("file:///letter.txt\0", 19) : QByteArray(81, '\xff');
            const QLatin1String refusal(isText ? "unsupported media" : "no media");
            Host host(Host::Quick);
            host.open({});
            host.setFileName(name);
            QCOMPARE(host.run(MediaPlayerCommandLoad), failed);
            AWAIT_EQUAL(host.overlay(), refusal);
            QVERIFY(!host.view()->pipeline);

            QCOMPARE(host.load(film), complete);
            AWAIT_EQUAL(host.picture(), "RGBW");
            QCOMPARE(host.play(GST_STATE_PLAYING), complete);
            host.setFileName(name);
            QCOMPARE(host.run(MediaPlayerCommandLoad), failed);
            AWAIT_EQUAL(host.overlay(), refusal + QLatin1String(isText ? "\nkeep last file" : ""));
            // What is kept is paused, and named in the record.
            AWAIT_EQUAL(host.pipelineStates(),
                        QList<int>({isText ? GST_STATE_PAUSED : GST_STATE_PLAYING}));
            QCOMPARE(host.record.fileName == film, isText);
            QVERIFY(host.strayBytesKept());
        }
    }
};

PLAYER_TEST_MAIN(LoadingTest)
#include "loading_test.moc"
