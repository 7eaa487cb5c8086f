#include <MediaPlayer/Player.h>

#include "PlayerPrivate.h"

namespace MediaPlayer
{

Player::Player(QObject *parent) : QObject(parent), d(std::make_unique<PlayerPrivate>(this)) { }

Player::~Player() = default;

QUrl Player::source() const
{
    return d->source;
}

void Player::setSource(const QUrl &source)
{
    d->setSource(source);
}

qint64 Player::duration() const
{
    return d->shown.duration;
}

qint64 Player::position() const
{
    return d->shown.position;
}

void Player::setPosition(qint64 position)
{
    d->setPosition(position);
}

float Player::bufferProgress() const
{
    return d->shown.bufferProgress;
}

bool Player::hasAudio() const
{
    return d->shown.hasAudio;
}

bool Player::hasVideo() const
{
    return d->shown.hasVideo;
}

bool Player::isSeekable() const
{
    return d->shown.seekable;
}

bool Player::isPlaying() const
{
    return d->shown.playbackState == PlayingState;
}

int Player::loops() const
{
    return d->loops;
}

void Player::setLoops(int loops)
{
    if (loops == d->loops || (loops < Once && loops != Infinite))
        return;
    d->loops = loops;
    Q_EMIT loopsChanged();
}

Player::PlaybackState Player::playbackState() const
{
    return d->shown.playbackState;
}

Player::MediaStatus Player::mediaStatus() const
{
    return d->shown.mediaStatus;
}

QVariantMap Player::metaData() const
{
    return d->shown.metaData;
}

Player::Error Player::error() const
{
    return d->shown.error;
}

QString Player::errorString() const
{
    return d->shown.errorString;
}

bool Player::autoPlay() const
{
    return d->autoPlay;
}

void Player::setAutoPlay(bool autoPlay)
{
    if (autoPlay == d->autoPlay)
        return;
    d->autoPlay = autoPlay;
    Q_EMIT autoPlayChanged(autoPlay);
}

double Player::volume() const
{
    return d->link.record().volume;
}

// The plug-in reads settings on this thread, so they may change while a command is on its way.
void Player::setVolume(double volume)
{
    constexpr double loudest = 10;
    volume = volume > 0 ? std::min(volume, loudest) : 0; // also for what is no number
    if (volume == this->volume())
        return;
    d->link.record().volume = volume;
    d->changeSetting(MediaPlayerCommandVolume);
    Q_EMIT volumeChanged(volume);
}

bool Player::isMuted() const
{
    return d->link.record().mute != 0;
}

void Player::setMuted(bool muted)
{
    if (muted == isMuted())
        return;
    d->link.record().mute = muted;
    d->changeSetting(MediaPlayerCommandMute);
    Q_EMIT mutedChanged(muted);
}

QSize Player::videoSize() const
{
    return d->shown.videoSize;
}

MediaPlayerParams &Player::record() const
{
    return d->link.record();
}

void Player::sendCommand(int command)
{
    d->sendRaw(command);
}

void Player::play()
{
    d->setIntent(PlayingState);
}

void Player::pause()
{
    d->setIntent(PausedState);
}

void Player::stop()
{
    d->setIntent(StoppedState);
}

} // namespace MediaPlayer
