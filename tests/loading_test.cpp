#include "tests/fixture.h"

namespace
{

/// Another name of a file, made so long that its URI fills the record's field.
QByteArray longestNameOf(const char *name, const QTemporaryDir &folder)
{
    QByteArray uri = "file://" + folder.path().toUtf8() + '/';
    uri += QByteArray(80 - uri.size() - 5, 'x') + ".webm";
    QFile::link(QUrl(QString::fromUtf8(media(name))).toLocalFile(),
                QUrl(QString::fromUtf8(uri)).toLocalFile());
    return uri;
}

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
        QCOMPARE(host.pipelineStates(), QList<int>({3, 2}));
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);

        QCOMPARE(host.load(quadrants), complete);
        QCOMPARE(host.view()->pipeline, first);
        QCOMPARE(host.pipelineStates(), QList<int>({3, 2}));
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
        AWAIT_EQUAL(host.position(), 0);

        // The same file again, while it plays, is left alone.
        QCOMPARE(host.play(4), complete);
        QCOMPARE(host.load(quadrants), complete);
        QCOMPARE(host.pipelineStates(), QList<int>({4, 2}));
        AWAIT_EQUAL(host.overlay(), QString());

        QCOMPARE(host.load(media("tone.flac")), complete);
        QCOMPARE(host.pipelineStates(), QList<int>({3, 2, 2}));
        QVERIFY(!host.view()->videoSink && !host.view()->glUpload && !host.view()->glColorConvert
                && !host.view()->videoItem);

        // Another spelling is another entry.
        QCOMPARE(host.load(media("%71uadrants.webm")), complete);
        AWAIT_EQUAL(host.pipelineStates(), QList<int>({3, 2, 2, 2}));
        AWAIT_EQUAL(host.picture(), "RGBW");
    }

    void anUnsupportedFileIsRefused_data() { addKinds(); }
    void anUnsupportedFileIsRefused()
    {
        QFETCH(Host::Kind, kind);
        QTemporaryDir folder;
        const QByteArray longest = longestNameOf("quadrants.webm", folder);
        Host host(kind);
        host.open("file:///first.txt");
        AWAIT_EQUAL(host.overlay(), unsupported);
        QCOMPARE(host.load("file:///second.txt"), failed);
        QCOMPARE(host.record.fileName, "file:///second.txt");

        QCOMPARE(host.load(longest), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(4), complete);
        QCOMPARE(host.load("file:///third.txt"), failed);
        QCOMPARE(host.record.fileName, longest.constData());
        QVERIFY(host.strayBytesKept());
        QCOMPARE(host.pipelineStates(), QList<int>({3}));
        AWAIT_EQUAL(host.overlay(), keepLast);
        AWAIT_EQUAL(host.state(), 3);
    }

    void aBadNameChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("name");
        forBothKinds([](const char *kindName, Host::Kind kind) {
            const auto row = [&](const char *rowName, const QByteArray &name) {
                QTest::addRow("%s, %s", rowName, kindName) << name << kind;
            };
            row("empty", QByteArray(1, '\0'));
            row("a path", QByteArray("/tmp/film.webm\0", 15));
            row("no scheme", QByteArray("film.webm\0", 10));
            row("no end", "file:///" + QByteArray(73, 'x'));
            row("no end, not UTF-8", QByteArray(81, '\xff'));
        });
    }
    void aBadNameChangesNothing()
    {
        QFETCH(QByteArray, name);
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.setFileName(name);
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.overlay(), noMedia);
        QVERIFY(!host.view()->pipeline);

        QCOMPARE(host.load(media("tone.flac")), complete);
        QCOMPARE(host.play(4), complete);
        AWAIT_EQUAL(host.overlay(), QString());
        host.setFileName(name);
        QCOMPARE(host.run(MediaPlayerCommandLoad), failed);
        AWAIT_EQUAL(host.overlay(), noMedia);
        QCOMPARE(host.pipelineStates(), QList<int>({4}));
        QVERIFY(host.strayBytesKept());
    }

    void anErrorIsToldAndLeavesTheRest_data()
    {
        QTest::addColumn<QByteArray>("name");
        forBothKinds([](const char *kindName, Host::Kind kind) {
            QTest::addRow("missing video, %s", kindName) << media("missing.webm") << kind;
            QTest::addRow("missing audio, %s", kindName) << media("missing.flac") << kind;
            QTest::addRow("not UTF-8, %s", kindName) << media("\xff\xc3.webm") << kind;
        });
    }
    void anErrorIsToldAndLeavesTheRest()
    {
        QFETCH(QByteArray, name);
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.load(name), complete); // loading went well; the media does not
        AWAIT_EQUAL(int(loadRelaxed(host.record.error)), 1);
        QCOMPARE(int(loadRelaxed(host.record.done)), 0);
        AWAIT_EQUAL(host.overlay(), errorText);
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.overlay(), QString());
    }

    void theOverlayStaysUntilThereIsSomething_data() { addKinds(); }
    void theOverlayStaysUntilThereIsSomething()
    {
        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open(media("tone.flac"));
        AWAIT_EQUAL(host.state(), 3);
        AWAIT_EQUAL(host.overlay(), loading);
        QCOMPARE(host.play(4), complete);
        AWAIT_EQUAL(host.overlay(), QString());

        // A video waits for its item, and that for a window on the screen.
        host.setShown(false);
        Host unseen(kind, {320, 240}, Host::Hidden);
        unseen.open(media("quadrants.webm"));
        AWAIT_EQUAL(unseen.state(), 2);
        AWAIT_EQUAL(unseen.overlay(), loading);
        unseen.setShown(true);
        AWAIT_EQUAL(unseen.picture(), "RGBW");
        AWAIT_EQUAL(unseen.overlay(), QString());
        QCOMPARE(unseen.state(), 3);
    }
};

PLAYER_TEST_MAIN(LoadingTest)
#include "loading_test.moc"
