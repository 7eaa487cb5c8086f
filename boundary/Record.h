#ifndef RECORD_H
#define RECORD_H

#include "boundary/AtomicAccess.h"
#include "boundary/MediaPlayerParams.h"

#include <QtCore/QByteArray>
#include <QtCore/QMarginsF>

#include <cstring>

/// Access to the host's record: the only code that touches its bytes, and the one place where their
/// memory orders stand. A view of plain memory, null or not, to be passed by value.
///
/// `execute` is the handshake. The host's operands are visible after it has been read raised, and
/// the answer is visible to the host once it reads 0. All other fields are single relaxed values.
/// The update thread makes each access with the view's `lock` held, since a view can lose its
/// record.
class Record
{
public:
    explicit Record(MediaPlayerParams *block) : m_block(block) { }
    explicit operator bool() const { return m_block; }

    // The request. [gui] [update]
    bool isExecuting() const { return loadAcquire(m_block->execute) != 0; }
    std::int32_t command() const { return loadRelaxed(m_block->command); }

    // Operands. [gui]
    double volume() const { return loadRelaxed(m_block->volume); }
    bool mute() const { return loadRelaxed(m_block->mute) != 0; }
    std::int32_t playState() const { return loadRelaxed(m_block->playState); }
    std::int64_t seekPosition() const { return loadRelaxed(m_block->seekPosition); }
    int flips() const
    {
        return loadRelaxed(m_block->transformBit0) + 2 * loadRelaxed(m_block->transformBit1);
    }
    int angle() const { return loadRelaxed(m_block->transformParam); }
    double opacity() const { return loadRelaxed(m_block->opacity); }
    bool keepAspectRatio() const { return loadRelaxed(m_block->keepAspectRatio) != 0; }
    bool pauseOnSave() const { return loadRelaxed(m_block->pauseOnSave) != 0; }
    bool resumeOnRestore() const { return loadRelaxed(m_block->resumeOnRestore) != 0; }

    /// The picture's overhang beyond the scene's root, in pixels.
    QMarginsF cropMargins() const
    {
        return {qreal(loadRelaxed(m_block->cropLeft)), qreal(loadRelaxed(m_block->cropTop)),
                qreal(loadRelaxed(m_block->cropRight)), qreal(loadRelaxed(m_block->cropBottom))};
    }

    /// The media's URI. A field without a NUL has no end, and is no text. [gui]
    QByteArray fileName() const
    {
        const std::size_t length = strnlen(m_block->fileName, sizeof m_block->fileName);
        return length < sizeof m_block->fileName ? QByteArray(m_block->fileName, qsizetype(length))
                                                 : QByteArray();
    }

    /// Names the file that stays loaded, cut to what fits. [gui]
    void writeBackFileName(const char *uri) const
    {
        qstrncpy(m_block->fileName, uri, sizeof m_block->fileName);
    }

    // Three answers, each in its own order. With `lock` held, since two threads give them.
    void answerCommand(bool done) const
    {
        storeRelaxed(m_block->done, std::int8_t(done));
        storeRelaxed(m_block->error, std::int8_t(!done));
        storeRelaxed(m_block->busy, std::int8_t(0));
    }
    void answerMediaError() const
    {
        storeRelaxed(m_block->error, std::int8_t(1));
        storeRelaxed(m_block->done, std::int8_t(0));
        storeRelaxed(m_block->busy, std::int8_t(0));
    }
    void answerRebinding() const
    {
        storeRelaxed(m_block->busy, std::int8_t(0));
        storeRelaxed(m_block->error, std::int8_t(0));
        storeRelaxed(m_block->done, std::int8_t(1));
    }

    /// The last write of a command. [gui]
    void lowerExecute() const { storeRelease(m_block->execute, std::int8_t(0)); }

    // Published values. [update]; `state` is also read by the GUI thread.
    std::int32_t state() const { return loadRelaxed(m_block->state); }
    void publishState(std::int32_t state) const { storeRelaxed(m_block->state, state); }
    void publishPosition(std::int64_t position) const { storeRelaxed(m_block->position, position); }
    void publishDuration(std::int64_t duration) const { storeRelaxed(m_block->duration, duration); }

    // The player and its picture. [gui]
    MediaPlayerView *view() const { return loadRelaxed(m_block->view); }
    void setView(MediaPlayerView *view) const { storeRelaxed(m_block->view, view); }
    void setAttached(bool attached) const
    {
        storeRelaxed(m_block->attached, std::int8_t(attached));
    }

private:
    MediaPlayerParams *m_block;
};

#endif
