#include "MediaAddress.h"

#include "MediaType.h"
#include "RedirectServer.h"

#include <MediaPlayer/MediaPlayerParams.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

using namespace std::chrono_literals;

namespace MediaPlayer
{
namespace
{

constexpr qsizetype roomForUri = MediaPlayerFileNameSize - 1;

// What a name in the private folder adds to the folder's own: a slash, a number, a suffix.
constexpr qsizetype roomForName = 16;
constexpr QLatin1String folderName("/mp-XXXXXX");

// How long a server may think about what it has before it is taken for a film.
constexpr auto serverTimeout = 10s;

QByteArray uriOfPath(const QString &path)
{
    return QUrl::fromLocalFile(path).toEncoded(QUrl::FullyEncoded);
}

/// Only the owner can enter a QTemporaryDir. A short path is wanted, so not every place will do.
std::unique_ptr<QTemporaryDir> makePrivateFolder()
{
    for (const QString &above : {QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation),
                                 QDir::tempPath(), QStringLiteral("/tmp")}) {
        if (above.isEmpty() || uriOfPath(above + folderName).size() + roomForName > roomForUri)
            continue;
        auto folder = std::make_unique<QTemporaryDir>(above + folderName);
        if (folder->isValid())
            return folder;
    }
    return nullptr;
}

MediaAddress::Resolved refused(Player::Error error, const QString &text)
{
    return {.uri = {}, .failure = {error, text}};
}

} // namespace

MediaAddress::~MediaAddress()
{
    for (const QByteArray &address : std::as_const(m_redirects))
        RedirectServer::forget(address);
}

void MediaAddress::resolve(const QUrl &given, const Receiver &receiver)
{
    // Forgotten first, which tells this from an end by a server's silence.
    if (const QPointer<QNetworkReply> before = std::exchange(m_asked, nullptr))
        before->abort();
    QUrl source = given;
    if (source.isRelative())
        source = QUrl::fromLocalFile(source.path());
    if (source.scheme() == QLatin1String("qrc"))
        return receiver(resolveFile(u':' + source.path()));
    if (source.isLocalFile())
        return receiver(resolveFile(QFileInfo(source.toLocalFile()).absoluteFilePath()));

    const bool isHttp = source.scheme().startsWith(QLatin1String("http"));
    const QString suffix = suffixOfName(source.toEncoded());
    if (!suffix.isEmpty() || !isHttp)
        return receiver(resolveRemote(source, suffix));
    QNetworkReply *const reply = head(source);
    connect(reply, &QNetworkReply::finished, this, [this, reply, source, receiver] {
        reply->deleteLater();
        if (reply->error() == QNetworkReply::OperationCanceledError && m_asked != reply)
            return;
        const QString type = reply->header(QNetworkRequest::ContentTypeHeader).toString();
        receiver(resolveRemote(source, suffixOfType(type)));
    });
}

MediaAddress::Resolved MediaAddress::resolveFile(const QString &path)
{
    if (const Failure failure = failureOf(path))
        return {.uri = {}, .failure = failure};
    const QByteArray uri = uriOfPath(path);
    if (isAudioName(uri) && isFilmInOgg(path))
        return provide(path, QStringLiteral("ogv"));
    if (isVideoName(uri) || isAudioName(uri)) {
        if (uri.size() <= roomForUri && !path.startsWith(u':'))
            return {.uri = uri, .failure = {}};
        return provide(path, QFileInfo(path).suffix().toLower());
    }
    const QString suffix = suffixOfContent(path);
    if (suffix.isEmpty())
        return refused(Player::FormatError,
                       Player::tr("“%1” is neither a film nor a sound: it is a %2.")
                           .arg(QFileInfo(path).fileName(), commentOf(path)));
    return provide(path, suffix);
}

// A copy of what GStreamer cannot open, as the resources of a program; else a link.
MediaAddress::Resolved MediaAddress::provide(const QString &path, const QString &suffix)
{
    if (const auto known = m_provided.constFind(path); known != m_provided.cend())
        return *known;
    if (!m_folder)
        m_folder = makePrivateFolder();
    if (!m_folder)
        return refused(Player::ResourceError,
                       Player::tr("No folder for temporary files can be written."));
    const QString name = m_folder->filePath(QString::number(m_provided.size()) + u'.' + suffix);
    const bool isResource = path.startsWith(u':');
    if (!(isResource ? QFile::copy(path, name) : QFile::link(path, name)))
        return refused(Player::ResourceError,
                       Player::tr("“%1” cannot be written.").arg(m_folder->path()));
    const QByteArray uri = uriOfPath(name);
    return *m_provided.insert(path, {.uri = uri, .failure = {}});
}

// The plug-in looks at the end of the address, and a server never sees the fragment.
MediaAddress::Resolved MediaAddress::resolveRemote(const QUrl &source, const QString &suffix)
{
    QByteArray uri = source.toEncoded(QUrl::FullyEncoded | QUrl::RemoveFragment);
    const QByteArray end = suffix.isEmpty() ? "mp4" : suffix.toLatin1();
    const bool told = isVideoName(uri) || isAudioName(uri);
    if (!told)
        uri += "#." + end;
    if (uri.size() > roomForUri && source.scheme().startsWith(QLatin1String("http"))) {
        QByteArray &address = m_redirects[source.toString()];
        if (address.isEmpty())
            address = RedirectServer::redirect(source, end);
        uri = address;
    }
    if (uri.isEmpty() || uri.size() > roomForUri)
        return refused(Player::ResourceError,
                       Player::tr("This address is too long: %1").arg(source.toString()));
    return {.uri = uri, .failure = {}};
}

QNetworkReply *MediaAddress::head(const QUrl &source)
{
    QNetworkRequest request(source);
    request.setTransferTimeout(int(std::chrono::milliseconds(serverTimeout).count()));
    QNetworkReply *const reply = m_network.head(request);
    m_asked = reply;
    return reply;
}

void MediaAddress::askServer(const QUrl &source,
                             const std::function<void(const Failure &)> &receiver)
{
    QNetworkReply *const reply = head(source);
    connect(reply, &QNetworkReply::finished, this, [this, reply, receiver] {
        reply->deleteLater();
        if (reply->error() == QNetworkReply::OperationCanceledError && m_asked != reply)
            return;
        const auto attribute = QNetworkRequest::HttpStatusCodeAttribute;
        const int status = reply->attribute(attribute).toInt();
        if (reply->error() == QNetworkReply::NoError || status == 405 || status == 501)
            return receiver({}); // all is well, or it does not answer such questions
        const bool denied = status == 401 || status == 403;
        const QString phrase =
            reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        receiver({denied ? Player::AccessDeniedError : Player::NetworkError,
                  status
                      ? Player::tr("The server answers: %1 %2").arg(status).arg(phrase)
                      : Player::tr("The server cannot be reached: %1").arg(reply->errorString())});
    });
}

} // namespace MediaPlayer
