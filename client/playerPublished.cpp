// What the plug-in tells of the medium, and what is shown of it.

#include "PlayerPrivate.h"

#include <QtCore/QSizeF>

namespace MediaPlayer
{

// The medium has gone back by itself when it is found this much further back, in milliseconds.
constexpr qint64 fallBack = 300;

void PlayerPrivate::look(std::optional<int> answeredCommand, bool done)
{
    if (answeredCommand)
        answered(*answeredCommand, done);
    if (!link.isAlive() && !m_toLoad && m_phase >= Phase::Opening && m_phase <= Phase::Ready)
        openAgain();
    m_seen = link.published();
    noticePreroll();
    noticeFailure();
    if (m_phase == Phase::Ready) {
        noticeArrival();
        noticeEnd();
        noticePlace();
        noticeUndonePlay();
    }
    noticePicture();
    noticeHidden();
    advance();
    const QPointer<PlayerPrivate> guard(this);
    if (answeredCommand)
        Q_EMIT q->commandAnswered(*answeredCommand, done, !done);
    if (guard)
        show();
}

void PlayerPrivate::noticeArrival()
{
    constexpr int looksForPlace = 50;
    if (m_arriving == 0)
        return;
    const bool known = m_seen.position != Published::unknown;
    if (!known && ++m_arriving <= looksForPlace)
        return;
    m_arriving = 0;
    m_fallenLooks = 0;
    if (known)
        m_place = m_seen.position;
    if (known ? m_seek.arrive(m_place, m_seen.duration) : !m_seek.isToSend())
        m_seek.cancel();
}

void PlayerPrivate::noticeEnd()
{
    const int ends = link.property("endOfMedia").toInt();
    m_endPending |= ends > m_endsSeen;
    m_endsSeen = ends;
    if (m_endPending && link.isIdle() && m_seen.state == MediaPlayerStatePaused)
        end();
}

// The picture of a medium that is found further back than it was has come into another window,
// where the plug-in starts it anew.
void PlayerPrivate::noticePlace()
{
    constexpr int looksForEnd = 4; // which may be told a little later
    if (m_seek.isActive() || m_arriving || m_endPending || m_atEnd || !link.isIdle()
        || m_seen.position == Published::unknown)
        return;
    if (m_seen.position + fallBack >= m_place) {
        m_place = std::max(m_place, m_seen.position);
        m_fallenLooks = 0;
        return;
    }
    if (++m_fallenLooks < looksForEnd)
        return;
    m_fallenLooks = 0;
    m_sentState = MediaPlayerStatePaused;
    m_seek.ask(m_place, 0);
}

void PlayerPrivate::end()
{
    m_endPending = false;
    m_fallenLooks = 0;
    m_place = 0;
    m_sentState = MediaPlayerStatePaused;
    m_seen.position = Published::unknown; // it is of the round that is over
    link.awaitPosition();
    ++m_timesPlayed;
    if (loops == Player::Infinite || m_timesPlayed < loops)
        return; // the intent stands: it plays again
    m_intent = Player::StoppedState;
    m_atEnd = true;
    m_hasPlayed = false;
}

// A preroll that was still on its way ends in PAUSED, also after a play command.
void PlayerPrivate::noticeUndonePlay()
{
    constexpr int looksBeforeTelling = 12;
    const bool undone = m_sentState == MediaPlayerStatePlaying && link.isIdle() && !m_endPending
        && m_seen.state == MediaPlayerStatePaused && !link.property("buffering").isValid();
    m_undoneLooks = undone ? m_undoneLooks + 1 : 0;
    if (m_undoneLooks < looksBeforeTelling || m_undoneLeft == 0)
        return;
    --m_undoneLeft;
    m_sentState = MediaPlayerStatePaused;
}

Player::MediaStatus PlayerPrivate::status() const
{
    switch (m_phase) {
    case Phase::Empty:
        return Player::NoMedia;
    case Phase::Failed:
        return Player::InvalidMedia;
    case Phase::Ready:
        break;
    default:
        return Player::LoadingMedia;
    }
    if (m_atEnd)
        return Player::EndOfMedia;
    if (link.property("buffering").isValid())
        return m_hasPlayed && m_place > 0 ? Player::StalledMedia : Player::BufferingMedia;
    return m_intent == Player::StoppedState ? Player::LoadedMedia : Player::BufferedMedia;
}

PlayerPrivate::Shown PlayerPrivate::assemble() const
{
    Shown now;
    now.playbackState = m_intent;
    now.mediaStatus = status();
    now.error = m_failure.error;
    now.errorString = m_failure.text;
    if (m_seek.isActive())
        now.position = m_seek.target();
    if (!isOpen())
        return now;
    const bool ready = m_phase == Phase::Ready;
    now.duration = m_seen.duration;
    if (!m_seek.isActive())
        now.position = m_atEnd ? now.duration : m_place;
    if (const QVariant percent = link.property("buffering"); percent.isValid())
        now.bufferProgress = percent.toFloat() / 100;
    now.hasVideo = link.property("hasVideo").toBool();
    now.hasAudio = link.property("hasAudio").toBool();
    // It is told a little later than a play command may be sent, and a seek by then is not lost.
    const QVariant seekable = link.property("seekable");
    now.seekable = seekable.isValid() ? seekable.toBool() : ready && now.duration > 0;
    now.metaData = link.property("metaData").toMap();
    now.videoSize = link.property("videoSize").toSize();
    const QSizeF pixel = link.property("pixelAspectRatio").toSizeF();
    if (pixel.width() > 0 && pixel.height() > 0)
        now.videoSize.setWidth(qRound(now.videoSize.width() * pixel.width() / pixel.height()));
    // Until it can be played, the words may be those of the time before.
    if (ready && now.errorString.isEmpty())
        now.errorString = link.property("errorText").toString();
    return now;
}

void PlayerPrivate::show()
{
    const Shown before = std::exchange(shown, assemble());
    const bool failed = std::exchange(m_failureToTell, false);
    const QPointer<PlayerPrivate> guard(this);
    const auto tell = [&guard](bool changed, auto &&signal) {
        if (guard && changed)
            signal();
    };
    const Shown now = shown;
    Player *const p = q;
    if (m_current && now.videoSize != before.videoSize)
        m_current->pictureChanged();
    tell(now.duration != before.duration, [&] { Q_EMIT p->durationChanged(now.duration); });
    tell(now.position != before.position, [&] { Q_EMIT p->positionChanged(now.position); });
    tell(now.bufferProgress != before.bufferProgress,
         [&] { Q_EMIT p->bufferProgressChanged(now.bufferProgress); });
    tell(now.hasAudio != before.hasAudio, [&] { Q_EMIT p->hasAudioChanged(now.hasAudio); });
    tell(now.hasVideo != before.hasVideo, [&] { Q_EMIT p->hasVideoChanged(now.hasVideo); });
    tell(now.seekable != before.seekable, [&] { Q_EMIT p->seekableChanged(now.seekable); });
    tell(now.metaData != before.metaData, [&] { Q_EMIT p->metaDataChanged(); });
    tell(now.videoSize != before.videoSize, [&] { Q_EMIT p->videoSizeChanged(now.videoSize); });
    tell(now.mediaStatus != before.mediaStatus,
         [&] { Q_EMIT p->mediaStatusChanged(now.mediaStatus); });
    tell(now.playbackState != before.playbackState,
         [&] { Q_EMIT p->playbackStateChanged(now.playbackState); });
    const bool plays = now.playbackState == Player::PlayingState;
    tell(plays != (before.playbackState == Player::PlayingState),
         [&] { Q_EMIT p->playingChanged(plays); });
    tell(now.error != before.error || now.errorString != before.errorString,
         [&] { Q_EMIT p->errorChanged(); });
    tell(failed, [&] { Q_EMIT p->errorOccurred(now.error, now.errorString); });
}

} // namespace MediaPlayer
