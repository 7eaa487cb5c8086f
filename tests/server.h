#ifndef SERVER_H
#define SERVER_H

#include <QtCore/QThread>
#include <QtNetwork/QTcpServer>

#include <atomic>

/// The whole of a file of MEDIA_DIR, given by its URI or path.
QByteArray readMedia(const QByteArray &uri);

/// Serves the files of MEDIA_DIR on loopback, in a thread of its own, since a player may keep the
/// GUI thread waiting.
class Server
{
public:
    Server();
    ~Server();

    /// The address of "way/file". The server behaves in one of these ways, or in several:
    ///   all         of nothing else
    ///   ranges      begins where it is asked to
    ///   endless     tells no length
    ///   fast        sends 1.5 MB in a second; all others as fast as they can
    ///   drip        sends a byte in 300 ms after the first 200
    ///   slow        takes 1.5 seconds to answer, longer than a preroll is waited for
    ///   silent      never answers
    ///   starts      sends 200 bytes and nothing else
    ///   half        ends in the middle of the file
    ///   pauses      sends 40 % of it, and the rest when it is told to go on
    ///   moved       says that the file is at "ranges"
    ///   404
    QByteArray uri(const QByteArray &wayAndFile) const { return m_address + '/' + wayAndFile; }

    void goOn() { m_paused = false; }
    void pause() { m_paused = true; }

private:
    struct Answer;
    void serve(QTcpSocket *socket);
    void send(QTcpSocket *socket, Answer &answer);

    QThread m_thread;
    QTcpServer *const m_server;
    QByteArray m_address;
    std::atomic<bool> m_paused = true;
};

#endif
