#ifndef SESSION_H
#define SESSION_H

#include "PluginLibrary.h"
#include "RecordModel.h"

#include <QtCore/QUrl>
#include <QtGui/QStandardItemModel>

/// What both hosts show: the players of the grid, one of which is the current one, and a play
/// list. The user interfaces and the scripts work on this and on the current Player.
class Session : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QAbstractItemModel *players READ playersModel CONSTANT)
    Q_PROPERTY(QAbstractItemModel *playlist READ playlistModel CONSTANT)
    Q_PROPERTY(QAbstractItemModel *record READ recordModel CONSTANT)
    Q_PROPERTY(Player *player READ player NOTIFY currentChanged)
    Q_PROPERTY(int current READ current WRITE setCurrent NOTIFY currentChanged)
    Q_PROPERTY(int entry READ entry NOTIFY entryChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    Q_PROPERTY(bool trace READ traces WRITE setTrace NOTIFY traceChanged)

public:
    /// Role of the players model that holds the Player.
    static constexpr int PlayerRole = Qt::UserRole + 1;
    /// Role of the play list that holds the address.
    static constexpr int UriRole = Qt::UserRole + 2;

    explicit Session(PluginLibrary &plugin);

    QAbstractItemModel *playersModel() { return &players; }
    QAbstractItemModel *playlistModel() { return &playlist; }
    QAbstractItemModel *recordModel() { return &record; }

    Player *player() const { return playerAt(currentRow); } ///< null when there is none
    Player *playerAt(int row) const;
    int current() const { return currentRow; }
    void setCurrent(int row);
    Q_INVOKABLE void addPlayer(); ///< and makes it the current one
    Q_INVOKABLE void removePlayer(); ///< the current one; at least one stays

    int entry() const { return entryRow; } ///< the play list's row that was loaded last, or -1
    Q_INVOKABLE void open(const QList<QUrl> &urls); ///< appends them and plays the first
    Q_INVOKABLE void playEntry(int row);
    Q_INVOKABLE void removeEntry(int row);
    Q_INVOKABLE void togglePlaying();
    Q_INVOKABLE void seekBy(double seconds);

    QString message() const { return messageText; } ///< the last answer or problem
    bool traces() const { return readSwitch(plugin.enableDebug); }
    void setTrace(bool on);
    void setWorkaround(bool on) { writeSwitch(plugin.enableWorkaround, on); }

Q_SIGNALS:
    void currentChanged();
    void entryChanged();
    void messageChanged();
    void traceChanged();

private:
    void say(const QString &text);
    void watch(Player *player);
    void forget(Player *player);
    void playNext(Player *player);

    PluginLibrary &plugin;
    QStandardItemModel players;
    QStandardItemModel playlist;
    RecordModel record;
    QString messageText;
    int currentRow = -1;
    int entryRow = -1;
};

/// The address of an existing file as a URI; any other text unchanged.
QString uriOf(const QString &fileOrUri);

#endif
