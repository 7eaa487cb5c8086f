#include "tests/fixture.h"
#include "tests/mediaFiles.h"

#include <QtCore/QRandomGenerator>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <sys/stat.h>

// What is missing, broken or a lie gets an answer, and the next good file plays. All of the damage
// is done where MEDIA_WHOLE is set, else a part of it.

namespace
{

enum Outcome {
    Refused = 1, ///< the load is answered with an error
    Reported = 2, ///< loads; an error is reported
    Settles = 4, ///< loads and is paused at a first frame or sound
    Pends = 8, ///< loads; neither, for as long as the source goes on waiting
};

QByteArray read(const QByteArray &uri)
{
    QFile file(QUrl(QString::fromUtf8(uri)).toLocalFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Serves the good file, and fails in the way that the requested name asks for.
void serve(QTcpSocket *socket)
{
    socket->waitForReadyRead();
    const QByteArray request = socket->readAll();
    const bool endless = request.contains("/endless"); // tells no length, and nor does the file
    const QByteArray body = read(media(endless ? "surround.ac3" : "quadrants.webm"));
    QByteArray answer = request.contains("/404") ? "HTTP/1.1 404 Not Found" : "HTTP/1.1 200 OK";
    if (!endless)
        answer += "\r\nContent-Length: " + QByteArray::number(body.size());
    answer += "\r\n\r\n" + body;
    if (request.contains("/half"))
        answer.chop(body.size() / 2);
    if (request.contains("/silent"))
        return;
    if (request.contains("/stalls")) {
        socket->write(answer.first(200));
        return;
    }
    // Slow is longer than a preroll is waited for.
    QTimer::singleShot(request.contains("/slow") ? 1500 : 0, socket, [socket, answer] {
        socket->write(answer);
        socket->disconnectFromHost();
    });
}

/// Cut, or with bytes changed: few, many, or only some of those in front, where the headers are.
QByteArray damaged(QByteArray bytes, int variant)
{
    if (variant < 4)
        return bytes.first(bytes.size() * (5 + 30 * variant) / 100);
    // Of these seeds none makes matroskademux of GStreamer 1.22 report an error on something that
    // is no element, which is a critical of its own.
    QRandomGenerator random {quint32(variant + 100)};
    const int range = variant % 3 == 2 ? 1000 : int(bytes.size());
    for (int i = variant % 3 == 1 ? 200 : 10; i > 0; --i)
        bytes[random.bounded(range)] = char(random.bounded(256));
    return bytes;
}

} // namespace

class BadMediaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // In a thread of its own, since a player may keep the GUI thread waiting.
        auto *const server = new QTcpServer;
        connect(server, &QTcpServer::newConnection, server,
                [server] { serve(server->nextPendingConnection()); });
        connect(&m_thread, &QThread::finished, server, &QObject::deleteLater);
        QVERIFY(server->listen(QHostAddress::LocalHost));
        m_server = "http://127.0.0.1:" + QByteArray::number(server->serverPort());
        server->moveToThread(&m_thread);
        m_thread.start();
        qputenv("no_proxy", "127.0.0.1");

        write("empty.mp4", {});
        write("noise.mp3", damaged(QByteArray(100, 'n'), 4));
        write("text.mp4", QByteArray("What is in a name?\n").repeated(100));
        write("video.mp3", read(media("quadrants.webm")));
        write("sound.mp4", read(media("tone.flac")));
        mkdir(m_folder.filePath(QStringLiteral("folder.mp4")).toUtf8(), 0700);
        mkfifo(m_folder.filePath(QStringLiteral("fifo.mp4")).toUtf8(), 0600);
        QFile::link(QStringLiteral("/dev/zero"), m_folder.filePath(QStringLiteral("device.mp4")));
    }

    void cleanupTestCase()
    {
        m_thread.quit();
        QVERIFY(m_thread.wait(patience));
    }

    void bad_data()
    {
        QTest::addColumn<QByteArray>("uri"); // HERE and SERVER are filled in
        QTest::addColumn<int>("allowed");
        const bool whole = qEnvironmentVariableIsSet("MEDIA_WHOLE");
        QByteArrayList broken = {"SERVER/half.webm"};
        for (const MediaFile &file : mediaFiles) {
            if (!file.shape.toDamage && file.shape.indexed)
                continue;
            QCOMPARE(makeMediaFile(file), QByteArray());
            if (!file.shape.toDamage)
                continue;
            for (int variant = whole ? 0 : 2; variant < (whole ? 64 : 6); ++variant) {
                const QByteArray name = QByteArray::number(variant) + '-' + file.name;
                write(name, damaged(read(media(file.name)), variant));
                broken += "HERE/" + name;
            }
        }
        const std::pair<int, QByteArrayList> rows[] = {
            {Refused,
             {"", QByteArray(81, 'x') /* no NUL: no text */, "\xff:a.mp4", "/a.mp4", "1f:///a.mp4",
              "HERE/fifo.mp4", "HERE/device.mp4"}},
            {Reported,
             {"HERE/empty.mp4", "HERE/noise.mp3", "HERE/text.mp4", "HERE/none.mp4",
              "FILE:///none.mp3", "file://host/a.mp4", "file:///%00.mp4", "file:///\xff\xfe.mp4",
              "file:///a%zz.mp4", "nosuch://a.mp4", "http://127.0.0.1:1/a.mp4", "SERVER/404.webm",
              "HERE/folder.mp4", "http:///a.mp4", "https://u@:1/a.mp4",
              "http://127.0.0.1:99999/a.mp4"}},
            {Settles,
             {"HERE/video.mp3", "HERE/sound.mp4", "SERVER/good.webm", "SERVER/slow.webm",
              "SERVER/endless.ac3"}},
            {Reported | Settles, broken},
            {Pends, {"SERVER/silent.webm", "SERVER/stalls.webm"}},
        };
        for (const auto &[allowed, uris] : rows) {
            for (const QByteArray &uri : uris)
                QTest::newRow(uri.toPercentEncoding(":/@?#").constData()) << uri << allowed;
        }
    }

    void bad()
    {
        QFETCH(QByteArray, uri);
        QFETCH(int, allowed);
        uri.replace("HERE", "file://" + m_folder.path().toUtf8()).replace("SERVER", m_server);
        Host host(Host::Quick);
        host.open({});
        host.setFileName(uri.size() < 81 ? uri + '\0' : uri);
        const QByteArray answer = host.run(MediaPlayerCommandLoad);
        const auto reported = [&] {
            return loadRelaxed(host.record.error)
                && host.overlay() == QLatin1String("Error loading media");
        };
        const auto outcome = [&] {
            if (reported()) // this may overtake the answer
                return Reported;
            if (answer != complete)
                return answer == failed ? Refused : Outcome();
            return host.pipelineStates().first() == GST_STATE_PAUSED ? Settles : Pends;
        };
        AWAIT_OR_SAY(outcome() & allowed,
                     "answer " + answer + ", outcome " + QByteArray::number(outcome()));
        if (allowed == Settles && uri.endsWith(".webm"))
            AWAIT_EQUAL(host.picture(), "RGBW");
        if (uri.contains("/endless")) {
            QVERIFY(blockForOnePass(host));
            QCOMPARE(host.duration(), 0);
        }
        if (outcome() == Settles) {
            // It plays until it ends or breaks, and as fast as it can: no clock holds it back.
            gst_pipeline_use_clock(GST_PIPELINE(host.view()->pipeline), nullptr);
            const std::uint32_t run = generationOf(host.view());
            host.play(GST_STATE_PLAYING);
            AWAIT(reported() || generationOf(host.view()) > run + 1);
        }
        if (allowed == Pends) {
            // Nothing waits for the server longer than it may.
            host.record.seekPosition = GST_SECOND;
            for (const int state : {GST_STATE_PLAYING, GST_STATE_NULL}) {
                QCOMPARE(host.play(state), complete);
                QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
            }
        }

        QCOMPARE(host.load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > GST_SECOND / 5 && host.overlay().isEmpty());
        QCOMPARE(host.record.error, std::int8_t(0));
    }

private:
    void write(const QByteArray &name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(QString::fromUtf8(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("nowhere to write a bad file");
    }

    const QTemporaryDir m_folder {QStringLiteral("/tmp/bad-XXXXXX")};
    QThread m_thread;
    QByteArray m_server;
};

PLAYER_TEST_MAIN(BadMediaTest)
#include "badMedia_test.moc"
