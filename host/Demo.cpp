#include "Demo.h"

#include <cstdio>

using namespace std::chrono_literals;
using MediaPlayer::Player;

constexpr auto lookInterval = 20ms;
constexpr qint64 patience = 20'000; // milliseconds, and the duration

Demo::Demo(Session &theSession, std::function<void()> picture)
    : session(theSession), player(*theSession.player()), takePicture(std::move(picture))
{
    looks.setInterval(lookInterval);
    connect(&looks, &QTimer::timeout, this, &Demo::look);
}

const QList<Demo::Step> &Demo::steps()
{
    static const QList<Step> all = {
        {"loaded", &Demo::isLoaded, &Demo::play},    {"playing", &Demo::plays, &Demo::wait},
        {"middle", &Demo::isInMiddle, &Demo::pause}, {"paused", &Demo::isPaused, &Demo::goBack},
        {"back at 25%", &Demo::isBack, &Demo::play}, {"playing on", &Demo::playsOn, &Demo::wait},
        {"at the end", &Demo::isAtEnd, &Demo::wait},
    };
    return all;
}

void Demo::start(const QUrl &media)
{
    session.list()->setCurrent(session.list()->append({media}));
    player.setSource(media);
    std::printf("%s\n", qPrintable(reportHeader()));
    elapsed.start();
    looks.start();
}

void Demo::look()
{
    if (player.error() != Player::NoError) {
        takePicture();
        return end(player.errorString());
    }
    const Step &now = steps()[step];
    if (!(this->*now.hasCome)()) {
        if (elapsed.elapsed() > patience + player.duration())
            end(QStringLiteral("\"%1\" did not come").arg(QLatin1String(now.label)));
        return;
    }
    std::printf("%s\n", qPrintable(reportLine(QLatin1String(now.label), player.record())));
    std::fflush(stdout);
    (this->*now.next)();
    elapsed.start();
    if (++step == steps().size())
        end({});
}

void Demo::end(const QString &problem)
{
    looks.stop();
    Q_EMIT finished(problem);
}

bool Demo::isLoaded() const
{
    return player.mediaStatus() == Player::LoadedMedia && player.duration() > 0;
}

bool Demo::plays() const
{
    return readShared(player.record().state) == MediaPlayerStatePlaying && player.position() > 0;
}

bool Demo::isInMiddle() const
{
    return player.position() >= player.duration() / 2;
}

bool Demo::isPaused() const
{
    return readShared(player.record().state) == MediaPlayerStatePaused;
}

bool Demo::isBack() const
{
    const qint64 place = readShared(player.record().position);
    return isPaused() && place >= 0 && place <= player.duration() * 260'000;
}

bool Demo::playsOn() const
{
    return plays() && player.position() >= player.duration() * 3 / 4;
}

bool Demo::isAtEnd() const
{
    return player.mediaStatus() == Player::EndOfMedia && readShared(player.record().position) >= 0;
}

void Demo::goBack()
{
    takePicture();
    player.setPosition(player.duration() / 4);
}
