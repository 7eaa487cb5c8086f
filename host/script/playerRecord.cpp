// How the record is used: one command at a time, and a look at what the plug-in published.

#include "Player.h"

#include <algorithm>

void Player::enqueue(int command, std::function<void()> writeOperands)
{
    if (!isAlive())
        return; // nobody would ever answer; a new player is told all settings anyway

    // A waiting command without operands of its own will find the newest ones in the record.
    const bool waits = std::any_of(waiting.cbegin(), waiting.cend(), [command](const Request &r) {
        return r.command == command && !r.writeOperands;
    });
    if (writeOperands || !waits)
        waiting.enqueue({command, std::move(writeOperands)});
    startNext();
}

void Player::startNext()
{
    if (running || waiting.isEmpty() || !isAlive())
        return;
    const Request next = waiting.dequeue();
    if (next.writeOperands)
        next.writeOperands();
    running = true;
    std::atomic_ref(record->busy).store(1, std::memory_order_relaxed);
    std::atomic_ref(record->command).store(next.command, std::memory_order_relaxed);
    // Release: whoever sees `execute` raised sees the operands too.
    std::atomic_ref(record->execute).store(1, std::memory_order_release);
}

void Player::finishCommand()
{
    // Acquire: once `execute` reads 0, the answer is there to be read.
    if (!running || std::atomic_ref(record->execute).load(std::memory_order_acquire) != 0)
        return;
    running = false;
    const int command = record->command;
    const bool done = readShared(record->done) != 0;
    const bool error = readShared(record->error) != 0;
    if (command == MediaPlayerCommandLoad) {
        // A refused file leaves the one before it loaded, and fileName names that one again.
        currentUri = QString::fromUtf8(
            record->fileName, qsizetype(qstrnlen(record->fileName, MediaPlayerFileNameSize)));
        if (done)
            reapplySettings();
        else
            playWhenPaused = false;
        Q_EMIT uriChanged();
    }
    Q_EMIT answered(command, done, error);
}

void Player::abandonCommands()
{
    if (isAlive() || isIdle())
        return;
    waiting.clear();
    running = false;
    std::atomic_ref(record->execute).store(0, std::memory_order_relaxed);
}

void Player::poll()
{
    abandonCommands();
    finishCommand();
    readPublished();
    startNext();
    playWhenReady();
    if (ending)
        continueEnding();
    Q_EMIT polled();
}

void Player::playWhenReady()
{
    if (playWhenPaused && isIdle() && seen.state == MediaPlayerStatePaused) {
        playWhenPaused = false;
        play();
    }
}

void Player::readPublished()
{
    Published now;
    now.state = readShared(record->state);
    now.position = readShared(record->position);
    now.duration = readShared(record->duration);
    now.done = readShared(record->done) != 0;
    now.error = readShared(record->error) != 0;
    now.attached = record->attached != 0;
    now.alive = isAlive();
    if (now == seen)
        return;
    const Published before = std::exchange(seen, now);
    Q_EMIT published();
    noticeEnd(before);
}

// The record has no field for the end of the media: it shows in a player that was told to play
// and is found paused, further back than it was.
void Player::noticeEnd(const Published &before)
{
    const bool stopped = seen.state == MediaPlayerStatePaused && seen.position < before.position;
    if (wantedState != MediaPlayerStatePlaying || !isIdle() || !stopped)
        return;
    wantedState = MediaPlayerStatePaused;
    Q_EMIT ended();
}
