#include <dlfcn.h>
#include <glib.h>

// For ThreadSanitizer. GLib's locks are made of futexes of its own, which the sanitizer does not
// see, so it takes each buffer that GStreamer hands from thread to thread for a race: thousands a
// second, each of which costs more than the test. These stand before GLib's and tell it.

#define REAL(function)                                                                             \
    [] {                                                                                           \
        static void *const real = dlsym(RTLD_NEXT, #function);                                     \
        return reinterpret_cast<decltype(&(function))>(real);                                      \
    }()

#pragma GCC visibility push(default)
extern "C" {

void __tsan_acquire(void *address);
void __tsan_release(void *address);

void g_mutex_lock(GMutex *mutex)
{
    REAL(g_mutex_lock)(mutex);
    __tsan_acquire(mutex);
}

gboolean g_mutex_trylock(GMutex *mutex)
{
    const gboolean locked = REAL(g_mutex_trylock)(mutex);
    if (locked)
        __tsan_acquire(mutex);
    return locked;
}

void g_mutex_unlock(GMutex *mutex)
{
    __tsan_release(mutex);
    REAL(g_mutex_unlock)(mutex);
}

// A recursive lock is the C library's own, but on a heap block that comes to other threads unseen.
void g_rec_mutex_init(GRecMutex *mutex)
{
    REAL(g_rec_mutex_init)(mutex);
    __tsan_release(mutex);
}

void g_rec_mutex_lock(GRecMutex *mutex)
{
    __tsan_acquire(mutex);
    REAL(g_rec_mutex_lock)(mutex);
}

// These end in a jump to the C library, which then seems to be called by whoever called GLib: from
// a library that is suppressed the sanitizer would not see the lock released. Here they are called.
#define UNLOCKS(function, Lock)                                                                    \
    void function(Lock *lock)                                                                      \
    {                                                                                              \
        REAL(function)(lock);                                                                      \
    }
UNLOCKS(g_rec_mutex_unlock, GRecMutex)
UNLOCKS(g_rw_lock_writer_unlock, GRWLock)
UNLOCKS(g_rw_lock_reader_unlock, GRWLock)

void g_cond_wait(GCond *condition, GMutex *mutex)
{
    __tsan_release(mutex);
    REAL(g_cond_wait)(condition, mutex);
    __tsan_acquire(mutex);
}

gboolean g_cond_wait_until(GCond *condition, GMutex *mutex, gint64 until)
{
    __tsan_release(mutex);
    const gboolean woken = REAL(g_cond_wait_until)(condition, mutex, until);
    __tsan_acquire(mutex);
    return woken;
}
}
