#ifndef SOAKWATCH_H
#define SOAKWATCH_H

#include "Player.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

#include <cstdint>

/// The soak's steps, kept so that a failure, also a crash or a GUI thread that hangs, can print the
/// last hundred of them with the seed that brings them about again.
namespace SoakLog
{
void start(std::uint32_t seed);
void step(const QString &what);
[[noreturn]] void fail(const QString &why);
} // namespace SoakLog

/// What must hold of one player at every moment. GUI thread.
class SoakWatch
{
public:
    explicit SoakWatch(Player &watched) : player(watched) { }

    /// Ends the process with what does not hold.
    void check();

private:
    void checkView(MediaPlayerView *view);

    /// Fails when `condition` has held for longer than is bearable.
    void bound(QElapsedTimer &since, bool condition, const char *what);

    Player &player;
    MediaPlayerView *seenView = nullptr;
    bool restored = false; ///< `attached` has been raised for the view
    QElapsedTimer raised;
    QElapsedTimer hidden;
    QElapsedTimer untrue;
    QElapsedTimer untold;
};

/// What a round may not leave behind.
struct SoakLevels {
    int threads = 0;
    int descriptors = 0;
    int gstObjects = 0;
    std::size_t heap = 0; ///< bytes

    static SoakLevels now();
    QString text() const;
};

#endif
