#ifndef MEDIAPLAYER_MEDIAADDRESS_H
#define MEDIAPLAYER_MEDIAADDRESS_H

#include <MediaPlayer/Player.h>

#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <functional>

namespace MediaPlayer
{

/// Why something cannot be played, in words for a user. NoError: nothing is wrong.
struct Failure {
    Player::Error error = Player::NoError;
    QString text;

    explicit operator bool() const { return error != Player::NoError; }
};

/// What is wrong with a local file that shows before it is opened.
Failure failureOf(const QString &path);

/// The words for a source that was opened and failed; `told` is the plug-in's own, or empty.
Failure failureOf(const QUrl &source, const QString &told);

/// Makes, of any source, an address that a record has room for and whose name tells the plug-in
/// whether it is a film or a sound. One object a Player: what it makes is kept, since the plug-in
/// opens the same address again. GUI thread.
class MediaAddress : public QObject
{
public:
    ~MediaAddress() override;

    struct Resolved {
        QByteArray uri;
        Failure failure; ///< then the rest is empty
    };
    using Receiver = std::function<void(const Resolved &)>;

    /// Calls `receiver` at once, or when a server has answered; never after the next call.
    void resolve(const QUrl &source, const Receiver &receiver);

    /// Asks the server what is wrong with the source. No failure: it would deliver. Calls
    /// `receiver` as resolve() does.
    void askServer(const QUrl &source, const std::function<void(const Failure &)> &receiver);

private:
    Resolved resolveFile(const QString &path);
    Resolved provide(const QString &path, const QString &suffix);
    Resolved resolveRemote(const QUrl &source, const QString &suffix);
    QNetworkReply *head(const QUrl &source);

    QHash<QString, Resolved> m_provided; ///< what lies in the private folder, by path
    QHash<QString, QByteArray> m_redirects; ///< by address
    std::unique_ptr<QTemporaryDir> m_folder; ///< made when it is needed
    QNetworkAccessManager m_network;
    QPointer<QNetworkReply> m_asked;
};

} // namespace MediaPlayer

#endif
