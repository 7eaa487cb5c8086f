#ifndef INTERLEAVING_H
#define INTERLEAVING_H

#include "pipeline/GstHandle.h"
#include "tests/fixture.h"

#include <atomic>
#include <mutex>

// What brings a player into a situation, forces threads to meet there, and tells that they have.

/// Lets the event loop run until the condition is true. Nothing goes on without it.
inline void await(const char *what, const std::function<bool()> &condition)
{
    if (!QTest::qWaitFor(condition, patience))
        qFatal("%s did not come", what);
}

inline void openAndPlay(Host &host)
{
    host.open(media("quadrants.webm"));
    await("the first frame", [&] { return host.state() == GST_STATE_PAUSED; });
    host.play(GST_STATE_PLAYING);
    await("a position", [&] { return host.position() > 0; });
}

inline void hideAndPark(Host &host)
{
    host.control->SysNativeControlShow(0);
    await("the parking", [&] { return loadRelaxed(host.record.attached) == 0; });
}

// Commands that are carried out before these return, as the update thread has them carried out.
inline void runAtOnce(Host &host, int command)
{
    host.raise(command);
    host.view()->updateValues();
}

inline void loadAtOnce(Host &host, const char *name)
{
    host.setFileName(media(name) + '\0');
    runAtOnce(host, MediaPlayerCommandLoad);
}

inline void playAtOnce(Host &host, GstState state)
{
    host.record.playState = state;
    runAtOnce(host, MediaPlayerCommandPlayState);
}

/// Whether a thread waits for the mutex. glibc writes 2 before such a thread goes to sleep.
inline bool isContended(pthread_mutex_t *mutex)
{
    return std::atomic_ref(mutex->__data.__lock).load() == 2;
}
inline bool isContended(const GRecMutex &mutex)
{
    return isContended(static_cast<pthread_mutex_t *>(mutex.p));
}

/// Holds up the thread that next changes the state of the view's pipeline, in the middle of its
/// turn, until another waits for its own turn, ends the view, or opens the gate.
class Gate
{
public:
    explicit Gate(MediaPlayerView *view) : m_view(view), m_pipeline(view->pipeline)
    {
        s_opened = false;
        s_active = this;
        const ObjectRef<GstBus> bus(gst_element_get_bus(m_pipeline));
        gst_bus_set_sync_handler(bus.get(), onMessage, nullptr, nullptr);
    }
    void open() { s_opened = true; }
    ~Gate()
    {
        s_active = nullptr;
        blockUntil([] { return s_inside == 0; });
    }

    std::atomic<bool> reached = false;
    std::atomic<bool> passed = false; ///< in time

private:
    static GstBusSyncReply onMessage(GstBus *, GstMessage *message, gpointer)
    {
        ++s_inside;
        Gate *const gate = s_active;
        if (gate && GST_MESSAGE_TYPE(message) == GST_MESSAGE_STATE_CHANGED
            && GST_MESSAGE_SRC(message) == GST_OBJECT(gate->m_pipeline)
            && !gate->reached.exchange(true))
            gate->passed = blockUntil([view = gate->m_view] {
                return s_opened || view->sequence.isAwaited() || !loadAcquire(view->pipelineActive);
            });
        --s_inside;
        return GST_BUS_PASS;
    }

    // Not the bus's user data: ThreadSanitizer cannot see how the bus hands that over.
    static inline std::atomic<Gate *> s_active = nullptr;
    static inline std::atomic<bool> s_opened = false;
    static inline std::atomic<int> s_inside = 0; // the handler may still run when a gate goes

    MediaPlayerView *const m_view;
    GstElement *const m_pipeline;
};

/// Puts a message that the pipeline itself could have sent onto its bus.
inline void postEnd(GstElement *pipeline)
{
    gst_element_post_message(pipeline, gst_message_new_eos(GST_OBJECT(pipeline)));
}

inline void postError(GstElement *pipeline)
{
    GST_ELEMENT_ERROR(pipeline, STREAM, FAILED, (nullptr), ("made up by a test"));
}

#endif
