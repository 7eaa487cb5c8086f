#include <dlfcn.h>
#include <glib.h>

// For ThreadSanitizer. GLib's locks are made of futexes of its own, which the sanitizer does not
// see, so it takes each buffer that GStreamer hands from thread to thread for a race: thousands a
// second, each of which costs more than the test. These stand before GLib's and tell it.

extern "C" {

void __tsan_acquire(void *address);
void __tsan_release(void *address);

#define REAL(function) reinterpret_cast<decltype(&function)>(dlsym(RTLD_NEXT, #function))

[[gnu::visibility("default")]] void g_mutex_lock(GMutex *mutex)
{
    static const auto real = REAL(g_mutex_lock);
    real(mutex);
    __tsan_acquire(mutex);
}

[[gnu::visibility("default")]] gboolean g_mutex_trylock(GMutex *mutex)
{
    static const auto real = REAL(g_mutex_trylock);
    const gboolean locked = real(mutex);
    if (locked)
        __tsan_acquire(mutex);
    return locked;
}

[[gnu::visibility("default")]] void g_mutex_unlock(GMutex *mutex)
{
    static const auto real = REAL(g_mutex_unlock);
    __tsan_release(mutex);
    real(mutex);
}

// A recursive lock is the C library's own, but on a heap block that comes to other threads unseen.
[[gnu::visibility("default")]] void g_rec_mutex_init(GRecMutex *mutex)
{
    static const auto real = REAL(g_rec_mutex_init);
    real(mutex);
    __tsan_release(mutex);
}

[[gnu::visibility("default")]] void g_rec_mutex_lock(GRecMutex *mutex)
{
    static const auto real = REAL(g_rec_mutex_lock);
    __tsan_acquire(mutex);
    real(mutex);
}

// These end in a jump to the C library, which then seems to be called by whoever called GLib: from a
// library that is suppressed the sanitizer would not see the lock released. Here they are called.
[[gnu::visibility("default")]] void g_rec_mutex_unlock(GRecMutex *mutex)
{
    static const auto real = REAL(g_rec_mutex_unlock);
    real(mutex);
}

[[gnu::visibility("default")]] void g_rw_lock_writer_unlock(GRWLock *lock)
{
    static const auto real = REAL(g_rw_lock_writer_unlock);
    real(lock);
}

[[gnu::visibility("default")]] void g_rw_lock_reader_unlock(GRWLock *lock)
{
    static const auto real = REAL(g_rw_lock_reader_unlock);
    real(lock);
}

[[gnu::visibility("default")]] void g_cond_wait(GCond *condition, GMutex *mutex)
{
    static const auto real = REAL(g_cond_wait);
    __tsan_release(mutex);
    real(condition, mutex);
    __tsan_acquire(mutex);
}

[[gnu::visibility("default")]] gboolean g_cond_wait_until(GCond *condition, GMutex *mutex,
                                                          gint64 until)
{
    static const auto real = REAL(g_cond_wait_until);
    __tsan_release(mutex);
    const gboolean woken = real(condition, mutex, until);
    __tsan_acquire(mutex);
    return woken;
}
}
