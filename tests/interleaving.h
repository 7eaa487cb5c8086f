#ifndef INTERLEAVING_H
#define INTERLEAVING_H

#include "tests/fixture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>

// What forces threads to meet at a chosen point, and what tells that they have met.

/// Whether a thread waits for the mutex. glibc writes 2 before such a thread goes to sleep.
inline bool isContended(std::mutex &mutex)
{
    return std::atomic_ref(mutex.native_handle()->__data.__lock).load() == 2;
}

/// Holds up the thread that takes `pipeline` out of the state `from`, in the middle of its
/// sequence of changes and with whatever it has locked, until `mayGoOn`.
class Gate
{
public:
    Gate(GstElement *pipeline, GstState from, std::function<bool()> mayGoOn)
        : m_pipeline(GST_ELEMENT(gst_object_ref(pipeline)))
        , m_from(from)
        , m_mayGoOn(std::move(mayGoOn))
    {
        GstBus *bus = gst_element_get_bus(m_pipeline);
        s_active = this;
        gst_bus_set_sync_handler(bus, onMessage, nullptr, nullptr);
        gst_object_unref(bus);
    }
    ~Gate()
    {
        GstBus *bus = gst_element_get_bus(m_pipeline);
        gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
        s_active = nullptr;
        blockUntil([] { return s_inside == 0; });
        gst_object_unref(bus);
        gst_object_unref(m_pipeline);
    }

    std::atomic<bool> reached = false;
    std::atomic<bool> passed = false; ///< in time

private:
    static GstBusSyncReply onMessage(GstBus *, GstMessage *message, gpointer)
    {
        ++s_inside;
        Gate *const gate = s_active;
        GstState from = GST_STATE_VOID_PENDING;
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_STATE_CHANGED)
            gst_message_parse_state_changed(message, &from, nullptr, nullptr);
        if (gate && GST_MESSAGE_SRC(message) == GST_OBJECT(gate->m_pipeline) && from == gate->m_from
            && !gate->reached.exchange(true))
            gate->passed = blockUntil(gate->m_mayGoOn);
        --s_inside;
        return GST_BUS_PASS;
    }

    // Not the bus's user data: ThreadSanitizer cannot see how the bus hands that over.
    static inline std::atomic<Gate *> s_active = nullptr;
    static inline std::atomic<int> s_inside = 0; // the handler may still run when a gate goes

    GstElement *const m_pipeline;
    const GstState m_from;
    const std::function<bool()> m_mayGoOn;
};

/// Puts a message that the pipeline itself could have sent onto its bus.
inline void postEnd(GstElement *pipeline)
{
    gst_element_post_message(pipeline, gst_message_new_eos(GST_OBJECT(pipeline)));
}

inline void postError(GstElement *pipeline)
{
    GError *error = g_error_new_literal(GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED, "made up");
    gst_element_post_message(pipeline,
                             gst_message_new_error(GST_OBJECT(pipeline), error, "by a test"));
    g_error_free(error);
}

/// A server that takes connections and never says anything, since nobody accepts them.
class SilentServer
{
public:
    SilentServer() : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto *plain = reinterpret_cast<sockaddr *>(&address);
        if (bind(m_socket, plain, size) || listen(m_socket, 64)
            || getsockname(m_socket, plain, &size))
            qFatal("no server on the loopback");
        uri = "http://127.0.0.1:" + QByteArray::number(ntohs(address.sin_port)) + "/silence.webm";
    }
    ~SilentServer() { close(m_socket); }

    QByteArray uri;

private:
    const int m_socket;
};

/// The process's threads. Those of players bear the process's own name, as some of Mesa's do.
inline qsizetype threads()
{
    return QDir(QStringLiteral("/proc/self/task"))
        .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
        .size();
}

inline int threadsOfOwnName()
{
    const auto nameOf = [](const QString &task) {
        QFile file(QStringLiteral("/proc/self/task/%1/comm").arg(task));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray own = nameOf(QString::number(getpid()));
    int count = 0;
    for (const QString &task :
         QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        count += nameOf(task) == own;
    return count;
}

#endif
