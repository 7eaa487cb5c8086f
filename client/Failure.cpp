// Failures in words.

#include "MediaAddress.h"

#include <QtCore/QFileInfo>

#include <unistd.h>

namespace MediaPlayer
{

Failure failureOf(const QString &path)
{
    const QFileInfo file(path);
    const QString name = file.fileName();
    if (!file.exists()) {
        // Whoever may not enter a folder is told that nothing is in it.
        const QFileInfo folder(file.absolutePath());
        if (folder.isNativePath() && folder.isDir() && !folder.isExecutable())
            return {Player::AccessDeniedError,
                    Player::tr("You have no permission to open the folder “%1”.")
                        .arg(folder.filePath())};
        return {Player::ResourceError, Player::tr("There is no file “%1”.").arg(path)};
    }
    if (file.isDir())
        return {Player::ResourceError, Player::tr("“%1” is a folder.").arg(path)};
    if (!file.isFile())
        return {Player::ResourceError, Player::tr("“%1” is not a file.").arg(path)};
    if (!file.isReadable())
        return {Player::AccessDeniedError,
                Player::tr("You have no permission to read “%1”.").arg(name)};
    if (file.size() == 0)
        return {Player::FormatError, Player::tr("“%1” is empty.").arg(name)};
    return {};
}

Failure failureOf(const QUrl &source, const QString &told)
{
    const QString name = source.fileName().isEmpty() ? source.toString() : source.fileName();
    if (!told.isEmpty()) {
        // What a server delivers and can be decoded, but does not play, has suffered on its way.
        const bool isRemote = source.scheme().startsWith(QLatin1String("http"));
        const bool decodes = !told.startsWith(QLatin1String("Not installed"));
        return {isRemote && decodes ? Player::NetworkError : Player::FormatError,
                Player::tr("“%1” cannot be played: %2").arg(name, told)};
    }
    return {Player::FormatError,
            Player::tr("“%1” cannot be played: it is damaged, or there is no decoder for it.")
                .arg(name)};
}

} // namespace MediaPlayer
