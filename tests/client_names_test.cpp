// Files and addresses of any name.

#include "clientFixture.h"

#include <MediaPlayer/PlayerWidget.h>

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QResource>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

namespace
{

QByteArray contentOf(const char *name)
{
    QFile file(media(name).toLocalFile());
    if (!file.open(QFile::ReadOnly))
        qFatal("%s is missing", name);
    return file.readAll();
}

/// Serves quadrants.webm, or large.mkv under an address with "large" in it. One with "none" in it
/// has nothing, one with "half" breaks off, and one with "stalls" keeps the most back for a while.
/// Does not answer a HEAD for one with "mute" in it. On a thread of its own, as a server elsewhere
/// would.
class FilmServer : public QThread
{
public:
    FilmServer()
    {
        start();
        started.acquire();
    }
    ~FilmServer() override
    {
        quit();
        wait();
    }
    QUrl url(const QString &rest) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(port) + rest);
    }

    QSemaphore muted; ///< has one for each request that was not answered
    std::atomic<bool> goesOn = false; ///< with what stalls

private:
    void run() override
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        port = server.serverPort();
        started.release();
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &server] {
            QTcpSocket *const client = server.nextPendingConnection();
            QObject::connect(client, &QTcpSocket::readyRead, client, [this, client] {
                const QByteArray request = client->readAll();
                const QByteArray line = request.left(request.indexOf('\n'));
                if (line.contains("mute") && line.startsWith("HEAD"))
                    return muted.release();
                const bool none = line.contains("none");
                const QByteArray body = line.contains("large") ? contentOf("large.mkv") : film;
                client->write(
                    none ? QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n")
                         : "HTTP/1.1 200 OK\r\nContent-Type: video/webm\r\nContent-Length: "
                            + QByteArray::number(body.size()) + "\r\n");
                client->write("Connection: close\r\n\r\n");
                const bool stalls = line.contains("stalls");
                const int percent = stalls ? 40 : line.contains("half") ? 50 : 100;
                const qsizetype part = body.size() * percent / 100;
                if (request.startsWith("GET") && !none)
                    client->write(body.left(part));
                if (!stalls)
                    return client->disconnectFromHost();
                auto *const looks = new QTimer(client);
                QObject::connect(looks, &QTimer::timeout, client,
                                 [this, client, looks, body, part] {
                                     if (!goesOn)
                                         return;
                                     looks->stop();
                                     client->write(body.mid(part));
                                     client->disconnectFromHost();
                                 });
                looks->start(20);
            });
        });
        exec();
    }

    const QByteArray film = contentOf("quadrants.webm");
    quint16 port = 0;
    QSemaphore started;
};

} // namespace

class ClientNamesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { widget.reset(); }
    void files_data();
    void files();
    void oneLinkAFile();
    void filmNamedAsSound();
    void addresses_data();
    void addresses();
    void serverSays_data();
    void serverSays();
    void waitsForServer();
    void lateAnswer();
    void resource();

private:
    Player &player() { return *widget->player(); }
    QByteArray uri() { return player().record().fileName; }

    std::unique_ptr<MediaPlayer::PlayerWidget> widget;
};

void ClientNamesTest::init()
{
    widget = std::make_unique<MediaPlayer::PlayerWidget>();
    widget->resize(160, 120);
    widget->show();
}

void ClientNamesTest::files_data()
{
    QTest::addColumn<QString>("name");
    const char *const names[] = {"plain.mp4",
                                 "a film with spaces.mp4",
                                 "100% #1 what?.mp4",
                                 "semi;colon&and=.mp4",
                                 "quote\" and 'quote'.mp4",
                                 "back\\slash.mp4",
                                 "line\nfeed.mp4",
                                 "Füße.mp4",
                                 "Фильм.mp4",
                                 "電影 映画 영화.mp4",
                                 "فيلم.mp4",
                                 "סרט.mp4",
                                 "หนัง.mp4",
                                 "चलचित्र.mp4",
                                 "ταινία.mp4",
                                 "🎬🍿.mp4",
                                 "e\u0301 combined.mp4",
                                 "film",
                                 "film.ts",
                                 "film.unknown",
                                 "FILM.MP4",
                                 ".hidden",
                                 "a.b.c.mp4"};
    for (const char *name : names)
        QTest::newRow(name) << QString::fromUtf8(name);
    QTest::newRow("long") << QString(240, u'x') + QStringLiteral(".mp4");
    QTest::newRow("deep") << QString(100, u'y') + u'/' + QString(100, u'z') + u'/'
            + QString::fromUtf8("Фильм без конца.mp4");
}

void ClientNamesTest::files()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QVERIFY(QFile::copy(media("yellow.mp4").toLocalFile(), path));
    player().setSource(QUrl::fromLocalFile(path));
    player().play();
    AWAIT(plays(player(), 100));
    QCOMPARE(player().duration(), 10'000);
    QVERIFY(player().hasVideo());
}

// The plug-in keeps what it has built by its name, so a file has one name as long as its player.
void ClientNamesTest::oneLinkAFile()
{
    const QTemporaryDir folder;
    QByteArray first;
    for (const char *name :
         {"Фильм один, очень длинное имя файла.mp4", "Фильм два, тоже очень длинное имя.mp4",
          "Фильм один, очень длинное имя файла.mp4"}) {
        const QString path = folder.filePath(QString::fromUtf8(name));
        QFile::copy(media("yellow.mp4").toLocalFile(), path);
        player().setSource(QUrl::fromLocalFile(path));
        AWAIT_EQUAL(player().mediaStatus(), Player::LoadedMedia);
        if (first.isEmpty())
            first = uri();
    }
    QCOMPARE(uri(), first);
    const QString link = QUrl::fromEncoded(first).toLocalFile();
    QVERIFY(QFileInfo(link).isSymLink());
    widget.reset();
    QVERIFY(!QFileInfo::exists(QFileInfo(link).path()));
}

void ClientNamesTest::filmNamedAsSound()
{
    player().setSource(media("wide.ogg"));
    player().play();
    AWAIT(plays(player(), 100));
    QVERIFY(player().hasVideo() && player().hasAudio());
    AWAIT_EQUAL(player().videoSize(), QSize(160, 60)); // in square pixels
    AWAIT_EQUAL(widget->sizeHint(), QSize(160, 60));
}

void ClientNamesTest::addresses_data()
{
    QTest::addColumn<QString>("rest");
    QTest::newRow("plain") << QStringLiteral("film.webm");
    QTest::newRow("query") << QStringLiteral("film.webm?token=1");
    QTest::newRow("untold") << QStringLiteral("watch?id=7");
    QTest::newRow("fragment") << QStringLiteral("watch#part");
    QTest::newRow("long") << QStringLiteral("film.webm?signature=") + QString(300, u'a');
    QTest::newRow("long and untold") << QString(300, u'b');
    QTest::newRow("script") << QString::fromUtf8("Фильм/電影.webm");
}

void ClientNamesTest::addresses()
{
    QFETCH(QString, rest);
    FilmServer server;
    player().setSource(server.url(rest));
    player().play();
    AWAIT(plays(player(), 100));
    QCOMPARE(player().duration() / 1000, 10);
}

void ClientNamesTest::serverSays_data()
{
    QTest::addColumn<QString>("rest");
    QTest::addColumn<QString>("words");
    const QString words = QStringLiteral("404 Not Found");
    QTest::newRow("plain") << QStringLiteral("none.webm") << words;
    QTest::newRow("long") << QStringLiteral("none.webm?") + QString(300, u'c') << words;
    QTest::newRow("breaks off") << QStringLiteral("half.webm")
                                << QStringLiteral("cannot be played");
}

void ClientNamesTest::serverSays()
{
    QFETCH(QString, rest);
    QFETCH(QString, words);
    FilmServer server;
    QSignalSpy errors(&player(), &Player::errorOccurred);
    player().setSource(server.url(rest));
    player().play();
    AWAIT_EQUAL(errors.size(), 1);
    QCOMPARE(player().error(), Player::NetworkError);
    QVERIFY2(player().errorString().contains(words), qPrintable(player().errorString()));
}

void ClientNamesTest::waitsForServer()
{
    FilmServer server;
    player().setSource(server.url(QStringLiteral("large-stalls.mkv")));
    player().play();
    AWAIT_EQUAL(player().mediaStatus(), Player::StalledMedia);
    QVERIFY(player().bufferProgress() < 1 && player().isPlaying());
    server.goesOn = true;
    AWAIT_EQUAL(player().mediaStatus(), Player::BufferedMedia);
    QCOMPARE(player().bufferProgress(), 1.0f);
    QCOMPARE(player().metaData().value(QStringLiteral("videoCodec")), QStringLiteral("On2 VP8"));
}

// What a server was asked about a source that has been left fails no other one.
void ClientNamesTest::lateAnswer()
{
    FilmServer server;
    QSignalSpy errors(&player(), &Player::errorOccurred);
    player().setSource(server.url(QStringLiteral("none-mute.webm")));
    AWAIT(server.muted.available() > 0);
    player().setSource(media("yellow.mp4"));
    player().play();
    AWAIT(plays(player(), 100));
    QCOMPARE(errors.size(), 0);
}

void ClientNamesTest::resource()
{
    const QTemporaryDir folder;
    QFile list(folder.filePath(QStringLiteral("list.qrc")));
    QVERIFY(list.open(QFile::WriteOnly));
    list.write("<RCC><qresource prefix=\"/films\"><file alias=\"film.mp4\">"
               + QFileInfo(media("yellow.mp4").toLocalFile()).canonicalFilePath().toUtf8()
               + "</file></qresource></RCC>");
    list.close();
    const QString made = folder.filePath(QStringLiteral("films.rcc"));
    QCOMPARE(QProcess::execute(
                 QStringLiteral(RCC),
                 {QStringLiteral("--binary"), list.fileName(), QStringLiteral("-o"), made}),
             0);
    QVERIFY(QResource::registerResource(made));
    player().setSource(QUrl(QStringLiteral("qrc:/films/film.mp4")));
    player().play();
    AWAIT(plays(player(), 100));
    QSignalSpy errors(&player(), &Player::errorOccurred);
    player().setSource(QUrl(QStringLiteral("qrc:/films/none.mp4")));
    AWAIT_EQUAL(errors.size(), 1);
    QCOMPARE(player().error(), Player::ResourceError);
}

CLIENT_TEST_MAIN(ClientNamesTest)
#include "client_names_test.moc"
