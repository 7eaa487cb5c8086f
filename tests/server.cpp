#include "tests/server.h"

#include "tests/fixture.h"

#include <QtNetwork/QTcpSocket>

namespace
{

constexpr int tick = 20; // ms

/// Where the client wants to begin, or -1 where it does not say.
qint64 rangeOf(const QByteArray &request)
{
    const qsizetype found = request.toLower().indexOf("range: bytes=");
    const QByteArray from = request.mid(found + 13);
    return found < 0 ? -1 : from.left(from.indexOf('-')).toLongLong();
}

} // namespace

QByteArray readMedia(const QByteArray &uri)
{
    QFile file(QUrl(QString::fromUtf8(uri)).toLocalFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct Server::Answer {
    QByteArray way;
    QByteArray bytes;
    qint64 pauseAt; ///< of them
    qint64 sent = 0;

    bool does(const char *what) const { return way.contains(what); }
};

Server::Server() : m_server(new QTcpServer)
{
    QObject::connect(m_server, &QTcpServer::newConnection, m_server,
                     [this] { serve(m_server->nextPendingConnection()); });
    QObject::connect(&m_thread, &QThread::finished, m_server, &QObject::deleteLater);
    if (!m_server->listen(QHostAddress::LocalHost))
        qFatal("no server: %s", qPrintable(m_server->errorString()));
    m_address = "http://127.0.0.1:" + QByteArray::number(m_server->serverPort());
    m_server->moveToThread(&m_thread);
    m_thread.start();
    qputenv("no_proxy", "127.0.0.1");
}

Server::~Server()
{
    m_thread.quit();
    m_thread.wait();
}

void Server::serve(QTcpSocket *socket)
{
    socket->waitForReadyRead();
    const QByteArray request = socket->readAll();
    const QByteArrayList path = request.split(' ').value(1).split('/');
    const auto answer = std::make_shared<Answer>();
    answer->way = path.value(1);
    const QByteArray body = readMedia(media(path.value(2).constData()));
    const qint64 from = answer->does("ranges") ? rangeOf(request) : -1;

    QByteArray head = "HTTP/1.1 200 OK";
    if (answer->does("404"))
        head = "HTTP/1.1 404 Not Found";
    else if (answer->does("moved"))
        head = "HTTP/1.1 302 Found\r\nLocation: " + uri("ranges/" + path.value(2));
    else if (from >= 0)
        head = "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes " + QByteArray::number(from)
            + '-' + QByteArray::number(body.size() - 1) + '/' + QByteArray::number(body.size());
    if (answer->does("ranges"))
        head += "\r\nAccept-Ranges: bytes";
    const QByteArray rest = body.mid(qMax(from, 0));
    if (!answer->does("endless"))
        head += "\r\nContent-Length: " + QByteArray::number(rest.size());
    answer->bytes = head + "\r\nConnection: close\r\n\r\n" + rest;
    answer->pauseAt = answer->bytes.size() - body.size() * 6 / 10;
    if (answer->does("half"))
        answer->bytes.chop(rest.size() / 2);

    auto *const timer = new QTimer(socket);
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(timer, &QTimer::timeout, socket,
                     [this, socket, answer] { send(socket, *answer); });
    QTimer::singleShot(answer->does("slow") ? 1500 : 0, timer, [timer, answer] {
        if (!answer->does("silent"))
            timer->start(answer->does("drip") ? 300 : tick);
    });
}

void Server::send(QTcpSocket *socket, Answer &answer)
{
    if (socket->state() != QAbstractSocket::ConnectedState)
        return;
    const bool hasStarted = answer.sent > 0;
    qint64 count = answer.bytes.size() - answer.sent;
    if (answer.does("fast"))
        count = qMin(count, qint64(1'500'000 * tick / 1000));
    if (answer.does("drip") || answer.does("starts"))
        count = qMin(count, qint64(hasStarted ? answer.does("drip") : 200));
    if (answer.does("pauses") && m_paused)
        count = qMin(count, qMax(answer.pauseAt - answer.sent, qint64(0)));
    answer.sent += socket->write(answer.bytes.constData() + answer.sent, count);
    if (answer.sent == answer.bytes.size())
        socket->disconnectFromHost();
}
