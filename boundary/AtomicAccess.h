#ifndef ATOMICACCESS_H
#define ATOMICACCESS_H

#include <atomic>

// Plain members and fields of the host's record that more than one thread touches are read and
// written through these, never directly.

template <typename T>
T loadRelaxed(T &shared)
{
    return std::atomic_ref<T>(shared).load(std::memory_order_relaxed);
}

template <typename T>
T loadAcquire(T &shared)
{
    return std::atomic_ref<T>(shared).load(std::memory_order_acquire);
}

template <typename T>
void storeRelaxed(T &shared, std::type_identity_t<T> value)
{
    std::atomic_ref<T>(shared).store(value, std::memory_order_relaxed);
}

template <typename T>
void storeRelease(T &shared, std::type_identity_t<T> value)
{
    std::atomic_ref<T>(shared).store(value, std::memory_order_release);
}

#endif
