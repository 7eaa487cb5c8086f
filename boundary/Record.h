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
    explicit Record(MediaPlayerParams *params) : m_params(params) { }
    explicit operator bool() const { return m_params; }

    // The request. [gui] [update]
    bool isExecuting() const { return loadAcquire(m_params->execute) != 0; }
    std::int32_t command() const { return loadRelaxed(m_params->command); }

    // Operands. [gui]
    double volume() const { return loadRelaxed(m_params->volume); }
    bool mute() const { return loadRelaxed(m_params->mute) != 0; }
    std::int32_t playState() const { return loadRelaxed(m_params->playState); }
    std::int64_t seekPosition() const { return loadRelaxed(m_params->seekPosition); }
    int flips() const
    {
        return loadRelaxed(m_params->transformBit0) + 2 * loadRelaxed(m_params->transformBit1);
    }
    int angle() const { return loadRelaxed(m_params->transformParam); }
    double opacity() const { return loadRelaxed(m_params->opacity); }
    bool keepAspectRatio() const { return loadRelaxed(m_params->keepAspectRatio) != 0; }
    bool pauseOnSave() const { return loadRelaxed(m_params->pauseOnSave) != 0; }
    bool resumeOnRestore() const { return loadRelaxed(m_params->resumeOnRestore) != 0; }

    /// The picture's overhang beyond the scene's root, in pixels.
    QMarginsF cropMargins() const
    {
        return {qreal(loadRelaxed(m_params->cropLeft)), qreal(loadRelaxed(m_params->cropTop)),
                qreal(loadRelaxed(m_params->cropRight)), qreal(loadRelaxed(m_params->cropBottom))};
    }

    /// The media's URI. A field without a NUL has no end, and is no text. [gui]
    QByteArray fileName() const
    {
        const std::size_t length = strnlen(m_params->fileName, sizeof m_params->fileName);
        return length < sizeof m_params->fileName
            ? QByteArray(m_params->fileName, qsizetype(length))
            : QByteArray();
    }

    /// Names the file that stays loaded, cut to what fits. [gui]
    void writeBackFileName(const char *uri) const
    {
        qstrncpy(m_params->fileName, uri, sizeof m_params->fileName);
    }

    // Three answers, each in its own order. With `lock` held, since two threads give them.
    void answerCommand(bool done) const
    {
        storeRelaxed(m_params->done, std::int8_t(done));
        storeRelaxed(m_params->error, std::int8_t(!done));
        storeRelaxed(m_params->busy, std::int8_t(0));
    }
    void answerMediaError() const
    {
        storeRelaxed(m_params->error, std::int8_t(1));
        storeRelaxed(m_params->done, std::int8_t(0));
        storeRelaxed(m_params->busy, std::int8_t(0));
    }
    void answerRebinding() const
    {
        storeRelaxed(m_params->busy, std::int8_t(0));
        storeRelaxed(m_params->error, std::int8_t(0));
        storeRelaxed(m_params->done, std::int8_t(1));
    }

    /// The last write of a command. [gui]
    void lowerExecute() const { storeRelease(m_params->execute, std::int8_t(0)); }

    // Published values. [update]; `state` is also read by the GUI thread.
    std::int32_t state() const { return loadRelaxed(m_params->state); }
    void publishState(std::int32_t state) const { storeRelaxed(m_params->state, state); }
    void publishPosition(std::int64_t position) const
    {
        storeRelaxed(m_params->position, position);
    }
    void publishDuration(std::int64_t duration) const
    {
        storeRelaxed(m_params->duration, duration);
    }

    // The player and its picture. [gui]
    MediaPlayerView *view() const { return loadRelaxed(m_params->view); }
    void setView(MediaPlayerView *view) const { storeRelaxed(m_params->view, view); }
    void setAttached(bool attached) const
    {
        storeRelaxed(m_params->attached, std::int8_t(attached));
    }

private:
    MediaPlayerParams *m_params;
};

#endif
