#ifndef RELAY_H
#define RELAY_H

#include <gst/gst.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QVariantMap>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>

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

    /// The pipeline is down: what was under way is void. By whoever took it down.
    void beginRun();

    /// [gui] Says why a load was refused; or takes that back, since the next one was not.
    void refuse(const QString &why);
    void accept();

    /// [gui] Drops the errors of this run, since the picture cannot take frames yet; or no longer.
    void setErrorsIgnored(bool ignored);

    /// [gui] The present run has come to its picture, which is the last word on earlier errors.
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
    void reset(); // the mutex is held
    void apply(const Edit &edit); // likewise
    QVariant value(const char *name);
    void show();

    std::mutex m_mutex;
    // Guarded by it.
    QObject *m_view;
    const GstElement *m_media = nullptr;
    QVariantMap m_values;
    bool m_onItsWay = false; ///< to the GUI thread
    bool m_refused = false;
    bool m_errorsIgnored = false;
    Fault m_told = Fault::None; ///< of this run, in errorText; an older text stays until then
    bool m_seekRefused = false;
};

#endif
