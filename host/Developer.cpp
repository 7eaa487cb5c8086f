#include "Developer.h"

#include <MediaPlayer/Plugin.h>

using namespace std::chrono_literals;
using MediaPlayer::Player;

constexpr auto recordInterval = 100ms;
constexpr int answersKept = 50;

Developer::Developer(Player &thePlayer) : player(thePlayer), theRecord(thePlayer.record())
{
    looks.setInterval(recordInterval);
    connect(&looks, &QTimer::timeout, &theRecord, &RecordModel::refresh);
    connect(&player, &Player::commandAnswered, this, [this](int command, bool done, bool error) {
        QStringList answers = theAnswers.stringList().mid(0, answersKept - 1);
        answers.prepend(tr("%1: done %2, error %3").arg(commandName(command)).arg(done).arg(error));
        theAnswers.setStringList(answers);
    });
}

void Developer::setWatching(bool on)
{
    if (on)
        looks.start();
    else
        looks.stop();
    Q_EMIT changed();
}

bool Developer::isTracing() const
{
    return MediaPlayer::isTracing();
}

void Developer::setTracing(bool on)
{
    MediaPlayer::setTracing(on);
    Q_EMIT changed();
}
