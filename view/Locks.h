#ifndef LOCKS_H
#define LOCKS_H

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <atomic>
#include <mutex>
#include <thread>

// The two kinds of locks of a view, and the words that let Clang check who holds them.

#if defined(__clang__) && !defined(Q_MOC_RUN)
#define THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define THREAD_SAFETY(attribute)
#endif
#define CAPABILITY(name) THREAD_SAFETY(capability(name))
#define SCOPED_CAPABILITY THREAD_SAFETY(scoped_lockable)
#define GUARDED_BY(lock) THREAD_SAFETY(guarded_by(lock))
#define ACQUIRED_BEFORE(...) THREAD_SAFETY(acquired_before(__VA_ARGS__))
#define REQUIRES(...) THREAD_SAFETY(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) THREAD_SAFETY(locks_excluded(__VA_ARGS__))
#define ACQUIRE(...) THREAD_SAFETY(acquire_capability(__VA_ARGS__))
#define RELEASE(...) THREAD_SAFETY(release_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) THREAD_SAFETY(try_acquire_capability(__VA_ARGS__))

/// Ends a debug build where a function of the GUI thread is called on another one, which nobody
/// would notice otherwise.
inline void assertGuiThread()
{
    Q_ASSERT(!QCoreApplication::instance()
             || QThread::currentThread() == QCoreApplication::instance()->thread());
}

/// The short lock: held for a few reads and writes, never across anything that waits or calls out.
class CAPABILITY("mutex") Mutex
{
public:
    void lock() ACQUIRE() { m_mutex.lock(); }
    void unlock() RELEASE() { m_mutex.unlock(); }

private:
    std::mutex m_mutex;
};

class SCOPED_CAPABILITY Guard
{
public:
    explicit Guard(Mutex &mutex) ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~Guard() RELEASE() { m_mutex.unlock(); }

    Guard(const Guard &) = delete;
    Guard &operator=(const Guard &) = delete;

private:
    Mutex &m_mutex;
};

/// The sequence lock: held by whoever changes the current pipeline's state, seeks in it or pops its
/// bus. The update thread only tries, and never overtakes a thread that waits.
class CAPABILITY("mutex") SequenceLock
{
public:
    /// Waits for the holder: for one poll of the update thread, and for the change of state that
    /// it may be inside, which has no bound.
    void acquire() ACQUIRE()
    {
        ++m_waiting;
        m_mutex.lock();
        --m_waiting;
        m_holder = std::this_thread::get_id();
    }

    bool tryAcquire() TRY_ACQUIRE(true)
    {
        if (isAwaited() || !m_mutex.try_lock())
            return false;
        m_holder = std::this_thread::get_id();
        return true;
    }

    void release() RELEASE()
    {
        m_holder = std::thread::id();
        m_mutex.unlock();
    }

    /// The update thread's sign to give up what it is at.
    bool isAwaited() const { return m_waiting > 0; }

    /// Foreign code that runs inside a change of state finds itself the holder.
    bool isHeldByCaller() const { return m_holder == std::this_thread::get_id(); }

private:
    std::mutex m_mutex;
    std::atomic<int> m_waiting = 0;
    std::atomic<std::thread::id> m_holder;
};

#endif
