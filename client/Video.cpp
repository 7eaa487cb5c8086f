#include <MediaPlayer/Video.h>

#include "ItemPlace.h"

#include <QtQml/QQmlContext>
#include <QtQml/QQmlInfo>
#include <QtQml/qqml.h>

namespace MediaPlayer
{

static QUrl resolved(const QObject *object, const QUrl &source)
{
    const QQmlContext *const context = qmlContext(object);
    return context && !source.isEmpty() ? context->resolvedUrl(source) : source;
}

QmlPlayer::QmlPlayer(QObject *parent) : Player(parent)
{
    connect(this, &Player::sourceChanged, this, &QmlPlayer::relativeSourceChanged);
}

void QmlPlayer::setRelativeSource(const QUrl &source)
{
    setSource(resolved(this, source));
}

// The base class would be told of the parent's window before this class is there to hear it.
Video::Video(QQuickItem *parent) : d(std::make_unique<ItemPlace>(this))
{
    follow(d->player());
    setParent(parent);
    setParentItem(parent);
}

Video::~Video() = default;

Player *Video::player() const
{
    return d->player();
}

void Video::setPlayer(Player *player)
{
    if (player ? player == d->player() : d->hasOwnPlayer())
        return;
    if (d->player())
        d->player()->disconnect(this);
    d->show(player);
    follow(d->player());
    if (player)
        connect(player, &QObject::destroyed, this, &Video::resetPlayer);
    Q_EMIT playerChanged();
    for (const auto signal :
         {&Video::sourceChanged, &Video::durationChanged, &Video::positionChanged,
          &Video::bufferProgressChanged, &Video::hasAudioChanged, &Video::hasVideoChanged,
          &Video::seekableChanged, &Video::loopsChanged, &Video::playbackStateChanged,
          &Video::mediaStatusChanged, &Video::metaDataChanged, &Video::errorChanged,
          &Video::autoPlayChanged, &Video::volumeChanged, &Video::mutedChanged})
        Q_EMIT(this->*signal)();
}

void Video::follow(Player *player)
{
    connect(player, &Player::sourceChanged, this, &Video::sourceChanged);
    connect(player, &Player::durationChanged, this, &Video::durationChanged);
    connect(player, &Player::positionChanged, this, &Video::positionChanged);
    connect(player, &Player::bufferProgressChanged, this, &Video::bufferProgressChanged);
    connect(player, &Player::hasAudioChanged, this, &Video::hasAudioChanged);
    connect(player, &Player::hasVideoChanged, this, &Video::hasVideoChanged);
    connect(player, &Player::seekableChanged, this, &Video::seekableChanged);
    connect(player, &Player::loopsChanged, this, &Video::loopsChanged);
    connect(player, &Player::playbackStateChanged, this, &Video::playbackStateChanged);
    connect(player, &Player::mediaStatusChanged, this, &Video::mediaStatusChanged);
    connect(player, &Player::metaDataChanged, this, &Video::metaDataChanged);
    connect(player, &Player::errorChanged, this, &Video::errorChanged);
    connect(player, &Player::errorOccurred, this, &Video::errorOccurred);
    connect(player, &Player::autoPlayChanged, this, &Video::autoPlayChanged);
    connect(player, &Player::volumeChanged, this, &Video::volumeChanged);
    connect(player, &Player::mutedChanged, this, &Video::mutedChanged);
    connect(player, &Player::playbackStateChanged, this, [this](Player::PlaybackState state) {
        if (state == Player::PlayingState)
            Q_EMIT playing();
        else if (state == Player::PausedState)
            Q_EMIT paused();
        else
            Q_EMIT stopped();
    });
}

QUrl Video::source() const
{
    return player()->source();
}

void Video::setSource(const QUrl &source)
{
    player()->setSource(resolved(this, source));
}

qint64 Video::duration() const
{
    return player()->duration();
}

qint64 Video::position() const
{
    return player()->position();
}

void Video::setPosition(qint64 position)
{
    player()->setPosition(position);
}

float Video::bufferProgress() const
{
    return player()->bufferProgress();
}

bool Video::hasAudio() const
{
    return player()->hasAudio();
}

bool Video::hasVideo() const
{
    return player()->hasVideo();
}

bool Video::isSeekable() const
{
    return player()->isSeekable();
}

int Video::loops() const
{
    return player()->loops();
}

void Video::setLoops(int loops)
{
    player()->setLoops(loops);
}

Player::PlaybackState Video::playbackState() const
{
    return player()->playbackState();
}

Player::MediaStatus Video::mediaStatus() const
{
    return player()->mediaStatus();
}

QVariantMap Video::metaData() const
{
    return player()->metaData();
}

Player::Error Video::error() const
{
    return player()->error();
}

QString Video::errorString() const
{
    return player()->errorString();
}

bool Video::autoPlay() const
{
    return player()->autoPlay();
}

void Video::setAutoPlay(bool autoPlay)
{
    player()->setAutoPlay(autoPlay);
}

double Video::volume() const
{
    return player()->volume();
}

void Video::setVolume(double volume)
{
    player()->setVolume(volume);
}

bool Video::isMuted() const
{
    return player()->isMuted();
}

void Video::setMuted(bool muted)
{
    player()->setMuted(muted);
}

void Video::play()
{
    player()->play();
}

void Video::pause()
{
    player()->pause();
}

void Video::stop()
{
    player()->stop();
}

void Video::seek(int offset)
{
    player()->setPosition(offset);
}

} // namespace MediaPlayer
