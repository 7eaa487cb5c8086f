// What the application asks for, and the one command at a time that brings it about.

#include "PlayerPrivate.h"

namespace MediaPlayer
{

void PlayerPrivate::setIntent(Player::PlaybackState intent)
{
    if (m_phase == Phase::Empty || (m_phase == Phase::Failed && intent != Player::PlayingState))
        return;
    if (m_phase == Phase::Failed)
        beginLoading();
    if (intent == Player::StoppedState) {
        m_toStop = m_phase == Phase::Ready && !m_atEnd
            && (m_hasPlayed || m_place > 0 || m_seek.isActive());
        m_seek.cancel();
        m_place = 0;
    }
    if (m_atEnd) {
        m_atEnd = false;
        m_timesPlayed = 0;
    }
    m_pausedByHiding = false;
    m_intentGiven = true;
    m_intent = intent;
    advance();
    show();
}

void PlayerPrivate::setPosition(qint64 position)
{
    const bool known = m_phase == Phase::Ready;
    if (m_phase == Phase::Empty || m_phase == Phase::Failed || (known && !shown.seekable))
        return;
    position = std::max<qint64>(position, 0);
    if (shown.duration > 0)
        position = std::min(position, shown.duration);
    m_atEnd = false;
    m_seek.ask(position, m_place);
    advance();
    show();
}

void PlayerPrivate::changeSetting(int command)
{
    // What is not open yet is given all settings when it is.
    if (!isOpen() || m_settings.contains(command))
        return;
    m_settings.append(command);
    advance();
}

void PlayerPrivate::sendRaw(int command)
{
    if (!link.isAlive())
        return;
    m_raw.enqueue(command);
    advance();
}

void PlayerPrivate::advance()
{
    if (m_toLoad && !link.isAlive())
        return makeView();
    if (!link.isAlive() || !link.isIdle())
        return;
    if (const std::optional<int> command = nextCommand())
        link.send(*command);
}

std::optional<int> PlayerPrivate::nextCommand()
{
    if (m_toLoad) {
        m_toLoad = m_toSilence = false;
        m_sent = m_resolved.uri;
        // The name that it has already is answered as done, whatever became of it.
        m_reloads = m_sent == m_loaded;
        if (m_reloads)
            return playState(MediaPlayerStateNull);
        qstrncpy(link.record().fileName, m_sent.constData(), MediaPlayerFileNameSize);
        return MediaPlayerCommandLoad;
    }
    if (m_toSilence && !m_loadScheduled) {
        m_toSilence = false;
        return playState(MediaPlayerStateReady);
    }
    if (isOpen() && !m_errorSeen) {
        if (const std::optional<int> command = nextOfMedium())
            return command;
    }
    return m_raw.isEmpty() ? std::nullopt : std::optional(m_raw.dequeue());
}

std::optional<int> PlayerPrivate::nextOfMedium()
{
    const bool ready = m_phase == Phase::Ready && !m_endPending;
    if (ready && std::exchange(m_toStop, false)) {
        m_sentState = MediaPlayerStatePaused;
        m_hasPlayed = false;
        return playState(MediaPlayerStateNull);
    }
    const bool plays = ready && !m_seek.isToSend() && m_sentState != wantedState();
    if (plays)
        m_settings.removeOne(MediaPlayerCommandVolume); // it goes with the state
    // Not before it can play: the answer to a setting would take an error of the preroll away.
    if (ready && !m_settings.isEmpty())
        return m_settings.takeFirst();
    if (ready && m_seek.isToSend()) {
        link.record().seekPosition = m_seek.take() * nsPerMs;
        return MediaPlayerCommandSeek;
    }
    if (!plays)
        return std::nullopt;
    m_sentState = wantedState();
    m_undoneLooks = 0;
    m_hasPlayed |= m_sentState == MediaPlayerStatePlaying;
    return playState(m_sentState);
}

int PlayerPrivate::playState(int state)
{
    link.record().playState = state;
    return MediaPlayerCommandPlayState;
}

int PlayerPrivate::wantedState() const
{
    return m_intent == Player::PlayingState ? MediaPlayerStatePlaying : MediaPlayerStatePaused;
}

void PlayerPrivate::answered(int command, bool done)
{
    const bool loads = command == MediaPlayerCommandLoad || m_reloads;
    m_reloads = false;
    if (loads) {
        // A medium that has failed by now was taken too; a refusal leaves the name before, or
        // nothing that has a state.
        const bool taken =
            done || (link.record().fileName == m_sent && link.published().state != 0);
        if (taken)
            m_loaded = m_sent;
        // Unless another source has been set meanwhile, this is the answer to the one that is.
        if (m_phase == Phase::Opening && !m_toLoad && m_sent == m_resolved.uri) {
            if (taken) {
                link.awaitNews();
                accepted();
            } else {
                explain();
            }
        }
    } else if (command == MediaPlayerCommandSeek && m_seek.isActive() && !m_seek.isToSend()) {
        link.awaitPosition();
        m_arriving = 1;
    } else if (command == MediaPlayerCommandPlayState
               && link.record().playState == MediaPlayerStateNull) {
        link.awaitPosition();
    }
}

} // namespace MediaPlayer
