// What both example hosts share: what is opened, how the list goes on, and what is remembered.

#include "../host/mediaFiles.h" // the tests have another
#include "Session.h"
#include "await.h"
#include "missing.h"

#include <MediaPlayer/PlayerWidget.h>
#include <MediaPlayer/Plugin.h>

#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>

class HostSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    }
    void opensFoldersAndLists();
    void goesOnAfterWhatCannotBePlayed();
    void goesOnWhereItWasLeft();
    void wheelTurnsInSteps();
    void saysWhatIsMissing();

private:
    QTemporaryDir folder;
    const QUrl folderOfMedia =
        QUrl::fromLocalFile(qEnvironmentVariable("MEDIA_DIR") + QLatin1Char('/'));
    const QUrl tone = folderOfMedia.resolved(QUrl(QStringLiteral("tone.flac")));
    const QUrl film = folderOfMedia.resolved(QUrl(QStringLiteral("quadrants.webm")));
    const QUrl missing = QUrl::fromLocalFile(QStringLiteral("/nowhere/first.webm"));
};

void HostSessionTest::opensFoldersAndLists()
{
    QDir(folder.path()).mkpath(QStringLiteral("films/2"));
    const auto write = [this](const char *name, const QByteArray &text) {
        QFile file(folder.filePath(QLatin1String(name)));
        QVERIFY(file.open(QFile::WriteOnly) && file.write(text) == text.size());
    };
    for (const char *name :
         {"films/10.mp4", "films/3.FLAC", "films/2/a.webm", "films/notes.txt", "films/4.rmvb"})
        write(name, "x");
    write("films/all.m3u", "#EXTM3U\r\n#EXTINF:1,Ten\r\n10.mp4\r\nhttp://host/film.ts?a=b\r\n");

    const auto names = [](const QList<QUrl> &urls) {
        QStringList list;
        for (const QUrl &url : mediaAt(urls))
            list.append(nameOf(url));
        return list.join(QLatin1Char(' '));
    };
    const auto at = [this](const char *name) {
        return QUrl::fromLocalFile(folder.filePath(QLatin1String(name)));
    };
    QCOMPARE(names({at("films")}), QStringLiteral("a.webm 3.FLAC 4.rmvb 10.mp4"));
    QCOMPARE(names({at("films/all.m3u"), at("no.ogg")}), QStringLiteral("10.mp4 film.ts no.ogg"));
    QCOMPARE(mediaAt({at("films/all.m3u")}).value(0), at("films/10.mp4"));
}

void HostSessionTest::goesOnAfterWhatCannotBePlayed()
{
    Session session;
    session.open({missing, tone});
    const PlayList &list = *session.list();
    AWAIT_EQUAL(list.current(), 1);
    QVERIFY(!list.index(0).data(PlayList::Problem).toString().isEmpty());
    QVERIFY(session.warns() && session.notice().contains(QLatin1String("first.webm")));
    AWAIT(session.player()->position() > 0);
    QVERIFY(list.index(1).data(PlayList::Problem).toString().isEmpty());

    session.playRow(0); // and nothing plays under its name
    QCOMPARE(session.player()->source(), missing);
    QCOMPARE(session.player()->position(), 0);
    AWAIT_EQUAL(list.current(), 1);
}

void HostSessionTest::goesOnWhereItWasLeft()
{
    {
        Session session;
        session.open({tone});
        AWAIT(session.player()->isSeekable());
        session.seekTo(0.5);
        session.setVolume(0.75);
        AWAIT(readShared(session.player()->record().position) > 4'000'000'000);
    }
    Session session;
    QCOMPARE(session.volume(), 0.75);
    QCOMPARE(session.recent().value(0), QStringLiteral("tone.flac"));
    session.openRecent(0);
    AWAIT(session.player()->isSeekable());
    QVERIFY(session.player()->position() > 4000);
    QVERIFY(!session.notice().isEmpty());

    session.playRow(0); // it plays already
    QCOMPARE(session.player()->position(), 0);
}

void HostSessionTest::wheelTurnsInSteps()
{
    Session session;
    session.setVolume(0.5);
    session.turnWheel(0); // as when it is turned sideways
    session.turnWheel(50);
    session.turnWheel(50);
    QCOMPARE(session.volume(), 0.5);
    session.turnWheel(50);
    QCOMPARE(session.player()->volume(), 1.05);
    session.turnWheel(-30 - 240);
    QCOMPARE(session.player()->volume(), 0.95);
}

// It plays, and the user is told once what it lacks.
void HostSessionTest::saysWhatIsMissing()
{
    Session session;
    session.open({tone});
    AWAIT(session.player()->position() > 0); // GStreamer has begun
    MediaPlayer::PlayerWidget picture;
    picture.setPlayer(session.player());
    picture.show();
    const Missing decoders {"vorbisdec", "avdec_vorbis"};
    session.open({film});
    AWAIT(session.notice().contains(QLatin1String("Vorbis")) && session.warns());
    AWAIT(session.player()->position() > 0);
    session.setVolume(0.5); // another notice
    session.playRow(0);
    AWAIT(session.player()->position() > 0);
    QVERIFY(!session.notice().contains(QLatin1String("Vorbis")));
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    MediaPlayer::setPluginPath(QStringLiteral(PLUGIN));
    HostSessionTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "host_session_test.moc"
