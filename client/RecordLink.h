#ifndef MEDIAPLAYER_RECORDLINK_H
#define MEDIAPLAYER_RECORDLINK_H

#include <MediaPlayer/MediaPlayerParams.h>

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtCore/QVariant>

#include <limits>
#include <memory>
#include <optional>

class BasicWidget;

namespace MediaPlayer
{

inline constexpr qint64 nsPerMs = 1'000'000; ///< the record counts nanoseconds

/// What the plug-in has published, as of one look. Times are milliseconds.
struct Published {
    static constexpr qint64 unknown = std::numeric_limits<qint64>::min();

    int state = 0; ///< enum MediaPlayerState; 0 until there is news
    qint64 position = unknown;
    qint64 duration = 0; ///< 0 while it is unknown
    bool error = false;
};

/// The record that a Player and the plug-in share, and the one command that is on its way.
/// GUI thread.
class RecordLink : public QObject
{
    Q_OBJECT

public:
    RecordLink();

    MediaPlayerParams &record() const { return *m_record; }

    /// Registers the record at the control, which makes a player in the plug-in if there is none.
    void registerAt(BasicWidget *control);

    /// Whether the plug-in has a player for the record: somebody to command.
    bool isAlive() const { return m_record->view != nullptr; }
    bool isIdle() const { return !m_running; }

    /// The command that is on its way; meaningless while idle.
    int running() const { return m_record->command; }

    /// Sends the command with the operands that are in the record. Only while idle and alive.
    void send(int command);

    /// What published() gives from now on is not older than this call: until there is news,
    /// `state` is 0 and the position unknown. Only while idle.
    void awaitNews();
    void awaitPosition(); ///< the same for the position alone
    Published published() const;

    /// A property that the plug-in's player tells beside the record; invalid if it does not.
    QVariant property(const char *name) const;

Q_SIGNALS:
    /// Regularly. `answered` is the command that was answered since the last time, or none. The
    /// receiver may delete this object.
    void looked(std::optional<int> answered, bool done);

private:
    void look();

    // The plug-in writes into it until its player is gone, so that shares it.
    const std::shared_ptr<MediaPlayerParams> m_record;
    const void *m_watched = nullptr;
    QTimer m_timer;
    bool m_running = false;
    bool m_error = false; ///< seen before a command took it away
};

} // namespace MediaPlayer

#endif
