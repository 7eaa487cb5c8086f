// How a source becomes a medium that can be played, or a failure that is told.

#include "PlayerPrivate.h"

namespace MediaPlayer
{

// A play command that something else in the plug-in undid is given this often again.
constexpr int timesToldAgain = 3;

void PlayerPrivate::setSource(const QUrl &newSource)
{
    if (newSource == source && m_phase != Phase::Failed)
        return;
    const bool changed = newSource != source;
    source = newSource;
    m_intent = Player::StoppedState;
    m_intentGiven = false;
    m_pausedByHiding = false;
    beginLoading();
    const QPointer<PlayerPrivate> guard(this);
    if (changed)
        Q_EMIT q->sourceChanged(source);
    if (guard)
        show();
}

// The work is put off to the next turn of the event loop: by then properties that are set together
// are set, handlers are connected, and the place is in its window.
void PlayerPrivate::beginLoading()
{
    m_phase = source.isEmpty() ? Phase::Empty : Phase::Resolving;
    m_toLoad = m_toStop = false;
    m_toSilence = !m_loaded.isEmpty();
    m_settings.clear();
    m_resolved = {};
    m_failure = {};
    m_failureToTell = m_errorSeen = m_explaining = false;
    m_seek.cancel();
    m_arriving = m_fallenLooks = 0;
    m_atEnd = m_endPending = m_hasPlayed = false;
    m_timesPlayed = 0;
    m_place = 0;
    if (!std::exchange(m_loadScheduled, true))
        QMetaObject::invokeMethod(this, &PlayerPrivate::resolve, Qt::QueuedConnection);
}

void PlayerPrivate::resolve()
{
    m_loadScheduled = false;
    if (m_phase != Phase::Resolving)
        return advance();
    if (autoPlay && !m_intentGiven)
        m_intent = Player::PlayingState;
    m_address.resolve(source, [this](const MediaAddress::Resolved &resolved) {
        if (resolved.failure) {
            fail(resolved.failure);
        } else {
            m_resolved = resolved;
            m_phase = Phase::Opening;
            m_toLoad = true;
            advance();
        }
        show();
    });
}

// Whatever ended the plug-in's player: another one goes on where it was.
void PlayerPrivate::openAgain()
{
    m_loaded.clear();
    m_phase = Phase::Opening;
    m_toLoad = true;
    if (m_place > 0 && !m_seek.isActive())
        m_seek.ask(m_place, 0);
    advance();
}

// Volume, mute and aspect ratio belong to one loaded file, and a sound has no picture to turn.
void PlayerPrivate::accepted()
{
    m_loaded = m_resolved.uri;
    m_toSilence = false;
    m_phase = Phase::Prerolling;
    m_sentState = MediaPlayerStatePaused;
    m_endsSeen = link.property("endOfMedia").toInt(); // what is loaded again keeps its count
    m_patience = 0;
    MediaPlayerParams &record = link.record();
    record.keepAspectRatio = 0;
    if (record.volume != 1.0)
        m_settings.append(MediaPlayerCommandVolume);
    if (record.mute)
        m_settings.append(MediaPlayerCommandMute);
    if (record.transformBit0 || record.transformBit1)
        m_settings.append(MediaPlayerCommandTransform);
}

// A registration loads without an answer. What it has loaded is heard of soon; if not, a load
// command for the same name asks, which costs nothing when it has been taken.
void PlayerPrivate::noticePreroll()
{
    constexpr int looksBeforeAsking = 6;
    if (!link.isIdle() || m_toLoad)
        return;
    if (m_phase == Phase::Opening) {
        if (m_seen.state != 0)
            accepted();
        else if (++m_patience > looksBeforeAsking)
            m_toLoad = true;
    }
    if (m_phase == Phase::Prerolling && m_seen.state >= MediaPlayerStatePaused && !m_errorSeen) {
        m_phase = Phase::Ready;
        m_undoneLeft = timesToldAgain;
    }
}

// The words may follow the error by a turn of the event loop. Words alone are a warning: that one
// of several streams has no decoder.
void PlayerPrivate::noticeFailure()
{
    constexpr int looksForWords = 3;
    if (!isOpen() || m_explaining)
        return;
    m_errorSeen |= m_seen.error;
    if (!m_errorSeen)
        return;
    if (!link.property("errorText").toString().isEmpty() || ++m_patience > looksForWords)
        explain();
}

// The reason is looked for where it is known: in the file system, at the server, in the plug-in.
void PlayerPrivate::explain()
{
    m_explaining = true;
    const Failure byPlugin = failureOf(source, link.property("errorText").toString());
    if (source.scheme().startsWith(QLatin1String("http"))) {
        m_address.askServer(source, [this, byPlugin](const Failure &byServer) {
            fail(byServer ? byServer : byPlugin);
            show();
        });
        return;
    }
    const Failure byFile = source.isLocalFile() ? failureOf(source.toLocalFile()) : Failure();
    fail(byFile ? byFile : byPlugin);
}

void PlayerPrivate::fail(const Failure &failure)
{
    m_phase = Phase::Failed;
    m_failure = failure;
    m_failureToTell = true;
    m_explaining = false;
    m_intent = Player::StoppedState;
    m_pausedByHiding = false;
    m_toLoad = m_toStop = m_atEnd = false;
    m_toSilence = !m_loaded.isEmpty();
    m_seek.cancel();
    m_settings.clear();
    advance();
}

} // namespace MediaPlayer
