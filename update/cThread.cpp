#include "update/cThread.h"

#include "boundary/AtomicAccess.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

namespace
{

constexpr useconds_t graceBeforeDestroy = 2'000'000;

int prepareAttributes(pthread_attr_t *attributes, int inheritSched, int policy, int priority,
                      int stackSize)
{
    // Widened with its sign: a negative size becomes a huge one, which the platform refuses.
    if (int error = pthread_attr_setstacksize(attributes, static_cast<size_t>(stackSize)))
        return error;
    if (inheritSched != PTHREAD_EXPLICIT_SCHED)
        return pthread_attr_setinheritsched(attributes, PTHREAD_INHERIT_SCHED);
    if (int error = pthread_attr_setschedpolicy(attributes, policy))
        return error;
    sched_param parameter {};
    parameter.sched_priority = priority;
    if (int error = pthread_attr_setschedparam(attributes, &parameter))
        return error;
    return pthread_attr_setinheritsched(attributes, PTHREAD_EXPLICIT_SCHED);
}

} // namespace

cThread::~cThread()
{
    if (threadId == 0)
        return;
    setAbort(true);
    usleep(graceBeforeDestroy);
    destroyThread();
}

int cThread::threadInit(int inheritSched, int policy, int priority, int stackSize)
{
    if (attrReady)
        pthread_attr_destroy(&threadAttr);
    attrReady = false;

    int error = pthread_attr_init(&threadAttr);
    if (error == 0) {
        error = prepareAttributes(&threadAttr, inheritSched, policy, priority, stackSize);
        if (error != 0)
            pthread_attr_destroy(&threadAttr);
    }
    if (error == 0 && mutexExists && threadId == 0)
        releaseMutex(); // a claim on the thread that was not started
    if (error == 0 && !mutexExists)
        error = pthread_mutex_init(&threadMutex, nullptr);
    if (error != 0) {
        std::printf("Thread configuration failed: %d\n\n", error);
        return error;
    }
    attrReady = true;
    mutexExists = true;
    return 0;
}

int cThread::createThread(void *(*routine)(void *), void *arg, char *name)
{
    if (threadId != 0)
        destroyThread();
    if (!attrReady)
        return 0;

    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    start = {routine, arg};
    hasLeft = false;
    const int error = pthread_create(&threadId, &threadAttr, enter, this);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);

    if (error == 0)
        pthread_setname_np(threadId, name ? name : "Unnamed");
    else
        threadId = 0; // what a failed pthread_create leaves there is undefined
    pthread_attr_destroy(&threadAttr);
    attrReady = false;
    joined = false;
    detached = false;
    return 0;
}

// The platform forgets a detached thread when it ends, so it may be cancelled only while it has not
// come to leave().
int cThread::destroyThread()
{
    if (threadId != 0 && detached) {
        std::unique_lock guard(leaving);
        if (!hasLeft)
            pthread_cancel(threadId);
        left.wait(guard, [this] { return hasLeft; });
    } else if (threadId != 0 && !joined) {
        pthread_cancel(threadId);
        pthread_join(threadId, nullptr);
    }
    threadId = 0;
    if (!mutexExists)
        return EINVAL;
    mutexExists = false;
    releaseMutex();
    return pthread_mutex_destroy(&threadMutex);
}

void cThread::releaseMutex()
{
    pthread_mutex_trylock(&threadMutex); // held now, by us or by whoever claimed the wrapper
    pthread_mutex_unlock(&threadMutex);
}

// The thread's own data tells of its end, however it ends. A frame with a destructor would not bear
// a cancellation at any instruction.
void *cThread::enter(void *wrapper)
{
    static const pthread_key_t end = [] {
        pthread_key_t key {};
        pthread_key_create(&key, leave);
        return key;
    }();
    pthread_setspecific(end, wrapper);
    const Start start = static_cast<cThread *>(wrapper)->start;
    return start.routine(start.argument);
}

void cThread::leave(void *wrapper)
{
    auto *const thread = static_cast<cThread *>(wrapper);
    const std::lock_guard guard(thread->leaving);
    thread->hasLeft = true;
    thread->left.notify_all();
}

int cThread::detachThread()
{
    if (threadId == 0 || joined || detached)
        return ESRCH;
    const int error = pthread_detach(threadId);
    detached = error == 0;
    return error;
}

int cThread::setCancelState()
{
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
    return pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, nullptr);
}

void cThread::setAbort(bool abort)
{
    storeRelaxed(abortFlag, abort);
}

bool cThread::getAbort()
{
    return loadRelaxed(abortFlag);
}

int cThread::trylockThreadMutex()
{
    return mutexExists ? pthread_mutex_trylock(&threadMutex) : EINVAL;
}

void cThread::unlockThreadMutex()
{
    if (mutexExists)
        pthread_mutex_unlock(&threadMutex);
    pthread_exit(nullptr);
}

bool cThread::isActive()
{
    if (threadId == 0 || joined)
        return false;
    if (detached) {
        const std::lock_guard guard(leaving);
        return !hasLeft;
    }
    joined = pthread_tryjoin_np(threadId, nullptr) == 0;
    return !joined;
}
