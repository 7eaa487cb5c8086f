// The rules of record and control that the client keeps for its users.

#include "clientFixture.h"
#include "missing.h"

#include <MediaPlayer/PlayerWidget.h>

#include <QtCore/QTemporaryDir>

#include <unistd.h>

using MediaPlayer::PlayerWidget;

class ClientRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { widget.reset(); }
    void hundredSeeks();
    void forwardSeek();
    void seekBeforeLoaded();
    void pauseBeforeLoaded();
    void refused_data();
    void refused();
    void mended();
    void settings();
    void lastSourceCounts();
    void stopAndLoops();
    void soundWithoutPlace();
    void missingDecoder();

private:
    Player &player() { return *widget->player(); }
    int state() { return std::atomic_ref(player().record().state).load(); }

    std::unique_ptr<PlayerWidget> widget;
};

void ClientRulesTest::init()
{
    widget = std::make_unique<PlayerWidget>();
    widget->resize(320, 240);
    widget->show();
}

// As a slider that is dragged asks: one command at a time, and the last one always.
void ClientRulesTest::hundredSeeks()
{
    player().setSource(media("quadrants.webm"));
    player().play();
    AWAIT(plays(player(), 100));
    const Commands commands(player());
    for (int i = 1; i <= 100; ++i) {
        const qint64 target = i < 100 ? i * 97 % 9000 : 5500;
        player().setPosition(target);
        QCOMPARE(player().position(), target);
        QTest::qWait(i % 10 ? 0 : 30);
    }
    AWAIT(player().position() != 5500);
    QVERIFY2(player().position() / 1000 == 5, QByteArray::number(player().position()));
    QVERIFY(commands.codes.count(MediaPlayerCommandSeek) < 30);
    QVERIFY(player().isPlaying());
}

void ClientRulesTest::forwardSeek()
{
    player().setSource(media("sparse.mp4"));
    player().play();
    AWAIT(plays(player(), 1500));
    player().pause();
    AWAIT_EQUAL(state(), 3);
    const PlaceWatch watch(player());
    const qint64 target = player().position() + 5000; // the key frame before is at 0
    player().setPosition(target);
    AWAIT_EQUAL(player().position(), 10'000);
    for (const qint64 place : watch.places)
        QVERIFY2(place == target || place == 10'000, QByteArray::number(place));
    player().setPosition(9000);
    AWAIT_EQUAL(player().position(), 0);
}

void ClientRulesTest::seekBeforeLoaded()
{
    player().setSource(media("quadrants.webm"));
    player().setPosition(4000);
    QCOMPARE(player().position(), 4000);
    const PlaceWatch watch(player());
    player().play();
    QVERIFY(player().isPlaying());
    AWAIT(plays(player(), 4200));
    QVERIFY(watch.lowest() >= 4000);
}

void ClientRulesTest::pauseBeforeLoaded()
{
    player().setSource(media("quadrants.webm"));
    player().setAutoPlay(true); // set with the source, it counts for it
    player().pause();
    AWAIT_EQUAL(player().mediaStatus(), Player::BufferedMedia);
    QCOMPARE(player().playbackState(), Player::PausedState);
}

void ClientRulesTest::refused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content"); ///< null: no file, empty: an empty one
    QTest::addColumn<Player::Error>("error");
    QTest::addColumn<QString>("words");
    const QByteArray text("Dear diary, today I have seen a film.\n");
    const QByteArray noise(100'000, 'x');
    QTest::newRow("missing") << "none.mp4" << QByteArray() << Player::ResourceError << "no file";
    QTest::newRow("folder") << "." << QByteArray() << Player::ResourceError << "is a folder";
    QTest::newRow("empty") << "empty.mp4" << QByteArray("") << Player::FormatError << "is empty";
    QTest::newRow("text") << "diary.txt" << text << Player::FormatError << "text document";
    QTest::newRow("broken") << "noise.webm" << noise << Player::FormatError << "noise.webm";
    QTest::newRow("secret") << "secret.mp4" << text << Player::AccessDeniedError << "permission";
}

// Told in words, and nothing plays afterwards: not the file before, and not what was to be played.
void ClientRulesTest::refused()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(Player::Error, error);
    QFETCH(QString, words);
    const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!content.isNull())
        QVERIFY(file.open(QFile::WriteOnly) && file.write(content) == content.size());
    file.close();
    const bool secret = error == Player::AccessDeniedError;
    if (secret)
        file.setPermissions({});
    player().setVolume(0.8); // whose answer would take an error away
    player().setSource(media("quadrants.webm"));
    player().play();
    AWAIT(plays(player(), 200));
    // Root may read everything; access() asks on behalf of the real user.
    const auto again = qScopeGuard([] { setreuid(geteuid(), geteuid()); });
    if (secret && geteuid() == 0)
        QCOMPARE(setreuid(65534, 0), 0);
    QSignalSpy errors(&player(), &Player::errorOccurred);
    player().setSource(QUrl::fromLocalFile(path));
    player().play();
    AWAIT_EQUAL(errors.size(), 1);
    setreuid(geteuid(), geteuid());
    QCOMPARE(player().mediaStatus(), Player::InvalidMedia);
    QCOMPARE(player().error(), error);
    QVERIFY2(player().errorString().contains(words), qPrintable(player().errorString()));
    QCOMPARE(player().playbackState(), Player::StoppedState);
    AWAIT(state() < 4);
    player().setVolume(0.5); // an answer that says "done" changes nothing of it
    QTest::qWait(300);
    QVERIFY(state() < 4);
    QCOMPARE(player().error(), error);
    QCOMPARE(errors.size(), 1);

    player().setSource(media("quadrants.webm"));
    player().play();
    AWAIT(plays(player(), 200));
    QCOMPARE(player().error(), Player::NoError);
}

// A file that failed is opened anew when it is played again, or set again.
void ClientRulesTest::mended()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("film.webm"));
    QFile file(path);
    QVERIFY(file.open(QFile::WriteOnly) && file.write(QByteArray(100'000, 'x')) > 0);
    file.close();
    QSignalSpy errors(&player(), &Player::errorOccurred);
    player().setSource(QUrl::fromLocalFile(path));
    AWAIT_EQUAL(errors.size(), 1);
    player().setSource(QUrl::fromLocalFile(path));
    AWAIT_EQUAL(errors.size(), 2);
    QVERIFY(QFile::remove(path) && QFile::copy(media("quadrants.webm").toLocalFile(), path));
    player().play();
    AWAIT(plays(player(), 200));
    QCOMPARE(player().error(), Player::NoError);
    QCOMPARE(errors.size(), 2);
}

void ClientRulesTest::settings()
{
    player().setMuted(true);
    player().setVolume(0.5);
    player().setSource(media("quadrants.webm"));
    AWAIT_EQUAL(player().mediaStatus(), Player::LoadedMedia);
    const Commands commands(player());
    player().setSource(media("tone.flac"));
    for (const int setting : {MediaPlayerCommandVolume, MediaPlayerCommandMute})
        AWAIT(commands.codes.lastIndexOf(setting)
              > std::max<qsizetype>(0, commands.codes.indexOf(MediaPlayerCommandLoad)));
    player().setVolume(99);
    QCOMPARE(player().volume(), 10.0);
}

void ClientRulesTest::lastSourceCounts()
{
    player().setSource(media("quadrants.webm"));
    AWAIT_EQUAL(player().mediaStatus(), Player::LoadedMedia);
    const Commands commands(player());
    for (int i = 0; i < 20; ++i) {
        player().setSource(media(i % 2 ? "quadrants.webm" : "tone.flac"));
        QTest::qWait(i % 5 ? 0 : 30);
    }
    player().setSource(media("sparse.mp4"));
    player().play();
    AWAIT(plays(player(), 200));
    QCOMPARE(player().duration(), 30'000);
    QVERIFY(commands.codes.count(MediaPlayerCommandLoad) < 10);
    player().setSource({});
    QCOMPARE(player().mediaStatus(), Player::NoMedia);
    AWAIT(state() < 3);
}

void ClientRulesTest::stopAndLoops()
{
    player().setLoops(2);
    player().setSource(media("tone.flac"));
    player().play();
    AWAIT(plays(player(), 300));
    player().stop();
    QCOMPARE(player().position(), 0);
    AWAIT_EQUAL(state(), 3);
    QCOMPARE(player().mediaStatus(), Player::LoadedMedia);
    player().play();
    QSignalSpy states(&player(), &Player::playbackStateChanged);
    for (int round = 1; round <= 2; ++round) {
        AWAIT(plays(player(), 200) && player().position() < 5000);
        QCOMPARE(states.size(), 0);
        player().setPosition(player().duration() - 300);
        AWAIT(round == 1 ? player().position() < 5000 : states.size() == 1);
    }
    QCOMPARE(player().mediaStatus(), Player::EndOfMedia);

    // The plug-in has it still behind a failure, and counts its ends on.
    player().setSource(media("none.flac"));
    AWAIT_EQUAL(player().mediaStatus(), Player::InvalidMedia);
    player().setSource(media("tone.flac"));
    player().play();
    AWAIT(plays(player(), 200));
}

void ClientRulesTest::soundWithoutPlace()
{
    Player alone;
    alone.setSource(media("tone.flac"));
    alone.play();
    AWAIT(plays(alone, 300));
    QCOMPARE(alone.duration() / 1000, 10);
}

// What lacks a decoder for one of its streams plays without it.
void ClientRulesTest::missingDecoder()
{
    player().setSource(media("yellow.mp4"));
    AWAIT_EQUAL(player().mediaStatus(), Player::LoadedMedia); // GStreamer has begun
    const Missing missing {"vorbisdec", "avdec_vorbis", "flacdec", "avdec_flac"};
    player().setSource(media("quadrants.webm"));
    player().play();
    AWAIT(plays(player(), 200));
    AWAIT(player().errorString().contains(QStringLiteral("Vorbis")));
    QCOMPARE(player().error(), Player::NoError);
    player().setSource(media("tone.flac"));
    AWAIT_EQUAL(player().error(), Player::FormatError);
    QVERIFY2(player().errorString().contains(QStringLiteral("Free Lossless")),
             qPrintable(player().errorString()));
}

CLIENT_TEST_MAIN(ClientRulesTest)
#include "client_rules_test.moc"
