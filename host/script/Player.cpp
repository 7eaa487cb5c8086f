#include "Player.h"

using namespace std::chrono_literals;

// The plug-in polls its records every 50 ms and publishes every 150 ms or so; looking more often
// than this finds nothing new.
constexpr auto pollInterval = 40ms;

Player::Player(QObject *parent) : QObject(parent), record(std::make_unique<MediaPlayerParams>())
{
    // All zero, `view` above all: null says that this record has no player yet.
    record->volume = 1.0;
    record->opacity = 1.0;

    connect(&pollTimer, &QTimer::timeout, this, &Player::poll);
    pollTimer.start(pollInterval);
}

Player::~Player()
{
    if (isAlive())
        static_cast<void>(record.release());
}

bool Player::load(const QString &uri)
{
    const QByteArray text = uri.toUtf8();
    if (text.size() >= MediaPlayerFileNameSize) {
        Q_EMIT refused(tr("This address takes %1 bytes, and a player has room for %2: %3")
                           .arg(text.size())
                           .arg(MediaPlayerFileNameSize - 1)
                           .arg(uri));
        return false;
    }
    if (isAlive())
        enqueue(MediaPlayerCommandLoad, [this, text] { writeFileName(text); });
    else
        writeFileName(text); // the registration will load it
    return true;
}

// A video pauses itself when its picture becomes able to show frames, so a play command that comes
// before would be undone.
void Player::loadAndPlay(const QString &uri)
{
    playWhenPaused = load(uri);
}

void Player::writeFileName(const QByteArray &text)
{
    qstrncpy(record->fileName, text.constData(), MediaPlayerFileNameSize);
    wantedState = MediaPlayerStatePaused;
    currentUri = QString::fromUtf8(text);
    Q_EMIT uriChanged();
}

void Player::setPlayState(int state)
{
    enqueue(MediaPlayerCommandPlayState, [this, state] {
        record->playState = state;
        wantedState = state;
    });
}

void Player::seek(double seconds)
{
    record->seekPosition = qint64(seconds * 1e9);
    enqueue(MediaPlayerCommandSeek);
}

void Player::request(int command)
{
    enqueue(command);
}

// The plug-in reads the operands on this thread, so a setting goes into the record at once, even
// while a command is running: whichever command carries it out finds the newest value.

void Player::setVolume(double linear)
{
    record->volume = linear;
    changeSetting(MediaPlayerCommandVolume);
}

void Player::setMuted(bool muted)
{
    record->mute = muted;
    changeSetting(MediaPlayerCommandMute);
}

void Player::setOpacity(double opacity)
{
    record->opacity = opacity;
    changeSetting(MediaPlayerCommandOpacity);
}

void Player::setKeepAspect(bool keep)
{
    record->keepAspectRatio = keep;
    changeSetting(MediaPlayerCommandKeepAspectRatio);
}

void Player::setTransform(int flips, int angle)
{
    record->transformBit0 = flips & 1;
    record->transformBit1 = (flips >> 1) & 1;
    record->transformParam = angle;
    changeSetting(MediaPlayerCommandTransform);
}

void Player::setCrop(int left, int top, int right, int bottom)
{
    record->cropLeft = qint16(left);
    record->cropTop = qint16(top);
    record->cropRight = qint16(right);
    record->cropBottom = qint16(bottom);
    changeSetting(MediaPlayerCommandCrop);
}

QList<int> Player::crop() const
{
    return {record->cropLeft, record->cropTop, record->cropRight, record->cropBottom};
}

void Player::setPauseOnHide(bool pause)
{
    record->pauseOnSave = pause;
    Q_EMIT settingsChanged();
}

void Player::setResumeOnShow(bool resume)
{
    record->resumeOnRestore = resume;
    Q_EMIT settingsChanged();
}

void Player::changeSetting(int command)
{
    if (!changedSettings.contains(command))
        changedSettings.append(command);
    enqueue(command);
    Q_EMIT settingsChanged();
}

// Volume, mute and aspect ratio belong to one loaded file, the rest to the picture, which a sound
// file has none of: after each load the plug-in is told again what the user has changed.
void Player::reapplySettings()
{
    for (const int command : std::as_const(changedSettings))
        enqueue(command);
}
