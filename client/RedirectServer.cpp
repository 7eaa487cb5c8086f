#include "RedirectServer.h"

#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtCore/QRandomGenerator>
#include <QtCore/QThread>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

namespace MediaPlayer::RedirectServer
{
namespace
{

// No request that a player makes is longer.
constexpr qint64 longestRequest = 16 * 1024;

class Server
{
public:
    Server();
    ~Server();

    QByteArray add(const QByteArray &target, const QByteArray &suffix);
    void remove(const QByteArray &path);

    quint16 port = 0; ///< 0 if there is no server

private:
    void serve(QTcpSocket *client);
    QByteArray answer(const QByteArray &request);

    QThread m_thread;
    QTcpServer *m_tcp = new QTcpServer;
    QMutex m_mutex; ///< guards m_targets
    QHash<QByteArray, QByteArray> m_targets; ///< by path
};

Server::Server()
{
    // Bound before it moves, so that the port is known here.
    if (!m_tcp->listen(QHostAddress::LocalHost)) {
        delete m_tcp;
        return;
    }
    port = m_tcp->serverPort();
    m_tcp->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_tcp, &QObject::deleteLater);
    QObject::connect(m_tcp, &QTcpServer::newConnection, m_tcp, [this] {
        while (QTcpSocket *client = m_tcp->nextPendingConnection())
            serve(client);
    });
    m_thread.setObjectName(QStringLiteral("MediaRedirect"));
    m_thread.start();
}

Server::~Server()
{
    m_thread.quit();
    m_thread.wait();
}

QByteArray Server::add(const QByteArray &target, const QByteArray &suffix)
{
    const quint64 secret[] = {QRandomGenerator::system()->generate64(),
                              QRandomGenerator::system()->generate64()};
    const QByteArray bytes(reinterpret_cast<const char *>(secret), sizeof secret);
    const QByteArray path = '/' + bytes.toHex() + '.' + suffix;
    const QMutexLocker lock(&m_mutex);
    m_targets.insert(path, target);
    return path;
}

void Server::remove(const QByteArray &path)
{
    const QMutexLocker lock(&m_mutex);
    m_targets.remove(path);
}

void Server::serve(QTcpSocket *client)
{
    QObject::connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
    QObject::connect(client, &QTcpSocket::readyRead, client, [this, client] {
        const QByteArray request = client->peek(longestRequest);
        if (!request.contains("\r\n\r\n") && request.size() < longestRequest)
            return;
        client->readAll();
        client->write(answer(request));
        client->disconnectFromHost();
    });
}

QByteArray Server::answer(const QByteArray &request)
{
    const QByteArray path = request.split(' ').value(1);
    QByteArray target;
    {
        const QMutexLocker lock(&m_mutex);
        target = m_targets.value(path);
    }
    const QByteArray end = "Content-Length: 0\r\nConnection: close\r\n\r\n";
    if (target.isEmpty())
        return "HTTP/1.1 404 Not Found\r\n" + end;
    return "HTTP/1.1 307 Temporary Redirect\r\nLocation: " + target + "\r\n" + end;
}

Server &server()
{
    static Server theOnly;
    return theOnly;
}

} // namespace

QByteArray redirect(const QUrl &target, const QByteArray &suffix)
{
    if (server().port == 0)
        return {};
    const QByteArray path
        = server().add(target.toEncoded(QUrl::FullyEncoded | QUrl::RemoveFragment), suffix);
    return "http://127.0.0.1:" + QByteArray::number(server().port) + path;
}

void forget(const QByteArray &address)
{
    server().remove(QUrl::fromEncoded(address).path().toLatin1());
}

} // namespace MediaPlayer::RedirectServer
