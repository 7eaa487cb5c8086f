#include "Session.h"

#include <QtCore/QFileInfo>

#include <algorithm>

Session::Session(PluginLibrary &thePlugin) : plugin(thePlugin)
{
    players.setItemRoleNames({{PlayerRole, "player"}});
    playlist.setItemRoleNames({{Qt::DisplayRole, "title"}, {UriRole, "uri"}});
}

Player *Session::playerAt(int row) const
{
    return players.index(row, 0).data(PlayerRole).value<Player *>();
}

void Session::setCurrent(int row)
{
    if (row == currentRow || !playerAt(row))
        return;
    currentRow = row;
    record.setPlayer(player());
    Q_EMIT currentChanged();
}

void Session::addPlayer()
{
    auto *player = new Player(this);
    watch(player);
    if (this->player() && this->player()->keepsAspect())
        player->setKeepAspect(true);
    auto *item = new QStandardItem;
    item->setData(QVariant::fromValue(player), PlayerRole);
    players.appendRow(item);
    setCurrent(players.rowCount() - 1);
}

void Session::removePlayer()
{
    if (players.rowCount() > 1)
        player()->end();
}

void Session::watch(Player *player)
{
    connect(player, &Player::placeReleased, this, [this, player] { forget(player); });
    connect(player, &Player::refused, this, &Session::say);
    connect(player, &Player::ended, this, [this, player] { playNext(player); });
    connect(player, &Player::answered, this, [this](int command, bool done, bool error) {
        say(tr("%1: done %2, error %3").arg(commandName(command)).arg(done).arg(error));
    });
}

// The views that show the model delete the place of the picture when its row goes.
void Session::forget(Player *player)
{
    const int rows = players.rowCount();
    for (int row = 0; row < rows; ++row) {
        if (playerAt(row) != player)
            continue;
        players.removeRow(row);
        currentRow = -1;
        setCurrent(std::clamp(row - 1, 0, players.rowCount() - 1));
        return;
    }
}

void Session::open(const QList<QUrl> &urls)
{
    const int first = playlist.rowCount();
    for (const QUrl &url : urls) {
        auto *item = new QStandardItem(url.fileName().isEmpty() ? url.toString() : url.fileName());
        item->setData(QString::fromLatin1(url.toEncoded()), UriRole);
        item->setEditable(false);
        playlist.appendRow(item);
    }
    playEntry(first);
}

void Session::playEntry(int row)
{
    if (row < 0 || row >= playlist.rowCount() || !player())
        return;
    entryRow = row;
    Q_EMIT entryChanged();
    player()->loadAndPlay(playlist.index(row, 0).data(UriRole).toString());
}

void Session::removeEntry(int row)
{
    if (!playlist.removeRow(row))
        return;
    if (entryRow >= row)
        --entryRow;
    Q_EMIT entryChanged();
}

void Session::playNext(Player *player)
{
    if (player == this->player() && entryRow >= 0)
        playEntry(entryRow + 1);
}

void Session::togglePlaying()
{
    if (!player())
        return;
    if (player()->isPlaying())
        player()->pause();
    else
        player()->play();
}

void Session::seekBy(double seconds)
{
    if (player() && player()->duration() > 0)
        player()->seek(std::clamp(player()->position() + seconds, 0.0, player()->duration()));
}

void Session::setTrace(bool on)
{
    writeSwitch(plugin.enableDebug, on);
    Q_EMIT traceChanged();
}

void Session::say(const QString &text)
{
    messageText = text;
    Q_EMIT messageChanged();
}

QString uriOf(const QString &fileOrUri)
{
    const QFileInfo file(fileOrUri);
    if (!file.exists())
        return fileOrUri;
    return QString::fromLatin1(QUrl::fromLocalFile(file.absoluteFilePath()).toEncoded());
}
