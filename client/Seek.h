#ifndef MEDIAPLAYER_SEEK_H
#define MEDIAPLAYER_SEEK_H

#include <QtCore/QtGlobal>

#include <algorithm>

namespace MediaPlayer
{

/// A seek that was asked for, until it has arrived. The plug-in goes to the key frame before; where
/// that lies behind the place that a forward seek began at, later places are tried until one is
/// ahead. Times are milliseconds.
class Seek
{
public:
    /// `here` is the place before the seek. It stays that of the first one while seeks follow each
    /// other, as when a slider is dragged.
    void ask(qint64 target, qint64 here)
    {
        if (!m_active)
            m_origin = here;
        m_target = m_attempt = target;
        m_step = firstStep;
        m_active = m_toSend = true;
    }
    void cancel() { m_active = m_toSend = false; }

    bool isActive() const { return m_active; }
    qint64 target() const { return m_target; } ///< the place to show meanwhile

    bool isToSend() const { return m_toSend; }

    /// The place to send to the plug-in.
    qint64 take()
    {
        m_toSend = false;
        return m_attempt;
    }

    /// What was sent has arrived at `place`. Whether the seek is over.
    bool arrive(qint64 place, qint64 duration)
    {
        if (m_toSend)
            return false;
        const bool wentBack = m_target > m_origin && place < m_origin;
        if (wentBack && m_attempt < duration) {
            m_attempt = std::min(m_attempt + m_step, duration);
            m_step *= 2;
            m_toSend = true;
            return false;
        }
        m_active = false;
        return true;
    }

private:
    static constexpr qint64 firstStep = 1000;

    qint64 m_target = 0;
    qint64 m_origin = 0;
    qint64 m_attempt = 0;
    qint64 m_step = firstStep;
    bool m_active = false;
    bool m_toSend = false;
};

} // namespace MediaPlayer

#endif
