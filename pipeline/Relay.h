#ifndef RELAY_H
#define RELAY_H

#include "view/Locks.h"

#include <gst/gst.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QVariantMap>

#include <atomic>
#include <chrono>
#include <functional>

/// How the data of the current media come in. [any]
struct Supply {
    std::atomic<bool> fromNetwork = false;
    std::atomic<bool> mayPause = false; ///< not live, and its first frame is there
    std::atomic<int> percent = 100; ///< of what GStreamer wants to have before it plays
    std::atomic<bool> failed = false; ///< an error was reported: nobody waits any longer
    std::atomic<bool> takesRanges = true; ///< the server begins where it is asked to

    /// It is to play, and is paused until there are data. Written with the sequence lock held.
    std::atomic<bool> held = false;

    std::atomic<unsigned> run = 0; ///< goes up whenever nothing of this holds any longer

    bool isShort() const { return percent < 100; }
    bool isAwaited() const { return mayPause && isShort() && !failed; }
};

/// When the sources of the current media have read something last. Of the update thread alone.
struct SupplyWatch {
    std::pair<unsigned, gint64> read; ///< in which run, and how many bytes
    std::chrono::steady_clock::time_point since;
};

/// What is told of the current media beside the record. It is collected on whatever thread finds it
/// out, and shown on the GUI thread as dynamic properties of the view; docs/host-guide.md lists
/// them.
///
/// The handlers of GStreamer's messages share it, may outlive the view and never see it. The mutex
/// is a leaf below the view's two locks.
class Relay : public QEnableSharedFromThis<Relay>
{
public:
    using Edit = std::function<void(QVariantMap &)>;
    /// One fault brings several messages. The first of the highest kind is its reason.
    enum class Fault {
        None,
        Consequence, ///< an error that only says that another one has stopped an element
        Missing, ///< a stream cannot be decoded; others may play
        Error,
    };

    explicit Relay(QObject *view) : m_view(view) { }

    /// [gui] The view ends.
    void close();

    /// [gui] Another media is current, or none. What was said of the one before is void.
    void follow(const GstElement *media, bool fromNetwork);

    /// [any] Call when the pipeline has been taken down. What is known of its supply no longer
    /// holds, and the next error counts as the first.
    void beginRun();

    /// [gui] Says why a load was refused; or takes that back, since the next one was not.
    void refuse(const QString &why);
    void accept();

    /// [gui] Drops the errors of this run, since the picture cannot take frames yet; or no longer.
    void setErrorsIgnored(bool ignored);

    /// [any] The present run has prerolled, which is the last word on the errors of earlier ones.
    void dropOldError();

    /// [any] Something is wrong with `media`.
    void report(const GstElement *media, Fault fault, const QString &text);

    /// [any] Whether `media` took a seek.
    void sought(const GstElement *media, bool taken);

    /// [any] Changes what is known of `media`, by name, unless another is current. The mutex is
    /// held over `edit`.
    void change(const GstElement *media, const Edit &edit);

    Supply supply;
    SupplyWatch watch;

private:
    void reset() REQUIRES(m_mutex);
    void apply(const Edit &edit) REQUIRES(m_mutex);
    QVariant value(const char *name);
    void show();

    Mutex m_mutex;
    QObject *m_view GUARDED_BY(m_mutex);
    const GstElement *m_media GUARDED_BY(m_mutex) = nullptr;
    QVariantMap m_values GUARDED_BY(m_mutex);
    bool m_onItsWay GUARDED_BY(m_mutex) = false; ///< to the GUI thread
    bool m_refused GUARDED_BY(m_mutex) = false;
    bool m_errorsIgnored GUARDED_BY(m_mutex) = false;
    /// Of this run, in errorText; an older text stays until then.
    Fault m_told GUARDED_BY(m_mutex) = Fault::None;
    bool m_seekRefused GUARDED_BY(m_mutex) = false;
};

#endif
