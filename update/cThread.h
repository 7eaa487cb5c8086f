#ifndef CTHREAD_H
#define CTHREAD_H

#include <pthread.h>

#include <condition_variable>
#include <mutex>

/// One POSIX thread: its attributes, its name, and a mutex through which a creator claims the
/// wrapper.
///
/// Calling order for one thread: threadInit(), trylockThreadMutex(), and only when that returned
/// 0, createThread(). A further thread takes destroyThread() and threadInit() again before it.
/// The owner's thread calls everything except setCancelState(), getAbort() and
/// unlockThreadMutex(), which the started thread calls on itself. Results are 0 or the platform's
/// error number.
class cThread
{
public:
    cThread() = default;

    /// With a thread: asks it to end (setAbort), gives it two seconds, then destroys it.
    ~cThread();

    cThread(const cThread &) = delete;
    cThread &operator=(const cThread &) = delete;

    /// Prepares the attributes and the mutex. `inheritSched` 1 takes `policy` and `priority`; any
    /// other number inherits the creator's scheduling. `stackSize` in bytes. The mutex is free
    /// afterwards, unless a thread is running. A failing step prints one message, ends the sequence
    /// and is returned.
    int threadInit(int inheritSched, int policy, int priority, int stackSize);

    /// Starts routine(arg) with all signals blocked, so that no handler of the host runs on the
    /// thread's small stack, and names it ("Unnamed" for null; names longer than 15 bytes are
    /// refused by the platform and leave the inherited one). A thread that the wrapper still holds
    /// is destroyed first. Always 0: a thread that could not be started is simply not there.
    int createThread(void *(*routine)(void *), void *arg, char *name);

    /// Cancels the thread, if there is one, and destroys the mutex, which is released first where
    /// somebody holds it. Joins the thread, or waits until a detached one has left its routine.
    /// EINVAL without a mutex.
    int destroyThread();

    /// Leaves the thread to itself: nobody joins it any more. ESRCH without one.
    int detachThread();

    /// Makes the calling thread cancellable at any instruction.
    int setCancelState();

    void setAbort(bool abort);
    bool getAbort();

    /// EBUSY while somebody holds it, EINVAL without a mutex. Never waits.
    int trylockThreadMutex();

    /// Releases the mutex and ends the calling thread.
    [[noreturn]] void unlockThreadMutex();

    /// Whether the thread still runs; joins one that has ended.
    bool isActive();

private:
    static void *enter(void *wrapper); // on the new thread
    static void leave(void *wrapper); // the same, when its routine is behind it
    void releaseMutex();

    pthread_t threadId = 0;
    pthread_mutex_t threadMutex;
    pthread_attr_t threadAttr;
    bool abortFlag = false;

    // What the handles above cannot tell. `mutexExists` is written before the thread starts and
    // after it is joined, so the thread may read it; the rest is the owner's.
    bool mutexExists = false;
    bool attrReady = false;
    bool joined = false; // never join or cancel again: the handle may name another thread
    bool detached = false;

    // What the thread starts with; written before that.
    struct Start {
        void *(*routine)(void *) = nullptr;
        void *argument = nullptr;
    } start;

    // For a detached thread, which tells by itself when it goes.
    std::mutex leaving;
    std::condition_variable left;
    bool hasLeft = false; // guarded by `leaving`
};

#endif
