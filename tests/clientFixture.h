#ifndef CLIENTFIXTURE_H
#define CLIENTFIXTURE_H

#include "await.h"

#include <MediaPlayer/MediaPlayerParams.h>
#include <MediaPlayer/Player.h>

#include <QtCore/QScopeGuard>
#include <QtGui/QImage>
#include <QtGui/QWindow>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>

#include <atomic>
#include <memory>

using MediaPlayer::Player;

/// A file that tests/make-media makes.
QUrl media(const char *name);

/// What the screen shows in the middle of the four quarters of a rectangle of the window, row by
/// row: R, G, B, W, Y, M (the ground in these tests), K for black, or ? for anything else.
QByteArray picture(QWindow *window, QRect part = {});

/// A scene of QML with the modules QtQuick and MediaPlayer, and an object `film` in its context.
/// Its sources are relative to the folder of the media.
class Scene
{
public:
    explicit Scene(const QByteArray &qml, QObject *film = nullptr);
    ~Scene();

    template <typename Type = QObject>
    Type *find(const char *name) const
    {
        return root->findChild<Type *>(QLatin1String(name));
    }
    QQuickItem *item(const char *name) const; ///< also where it has no QObject parent
    QWindow *window() const { return qobject_cast<QWindow *>(root.get()); }
    void call(const char *function) { QMetaObject::invokeMethod(root.get(), function); }

    std::unique_ptr<QQmlEngine> engine;
    std::unique_ptr<QObject> root;
};

/// Records the places that a player shows, and whether one lay before the one before it.
class PlaceWatch : public QObject
{
public:
    explicit PlaceWatch(Player &player);
    QList<qint64> places;
    qint64 lowest() const
    {
        return places.isEmpty() ? 0 : *std::min_element(places.begin(), places.end());
    }
    bool wentBack() const { return !std::is_sorted(places.begin(), places.end()); }
};

/// The state, and all that a test is to see of a player that plays.
inline bool plays(const Player &player, qint64 beyond)
{
    return player.playbackState() == Player::PlayingState && player.position() > beyond
        && std::atomic_ref(player.record().state).load() == 4;
}

/// The commands that a player has sent, and had answered.
class Commands : public QObject
{
public:
    explicit Commands(Player &player);
    QList<int> codes;
};

int runClientTest(int argc, char **argv, const std::function<int(int, char **)> &test);

#define CLIENT_TEST_MAIN(TestClass)                                                                \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        return runClientTest(argc, argv, [](int count, char **values) {                            \
            TestClass test;                                                                        \
            return QTest::qExec(&test, count, values);                                             \
        });                                                                                        \
    }

#endif
