#ifndef TRACE_H
#define TRACE_H

#include "diagnostics/MediaPlayerDiagnostics.h"

#include <atomic>

// How the library's own code asks for a trace line. With tracing off each call costs a load and a
// branch. Any thread.

/// A switch may be changed from outside at any moment, so it is read as an atomic byte.
inline bool switchedOn(unsigned char &exportedSwitch)
{
    return std::atomic_ref(exportedSwitch).load(std::memory_order_relaxed) != 0;
}

inline bool traceOn()
{
    return switchedOn(enableDebug);
}

namespace trace
{
void writeLine(const char *text); // puts
[[gnu::format(printf, 1, 2)]] void writeFormat(const char *format, ...); // printf
[[gnu::format(printf, 1, 2)]] void writeGlib(const char *format, ...); // g_print
} // namespace trace

/// One whole line, without its line feed.
inline void traceLine(const char *text)
{
    if (traceOn())
        trace::writeLine(text);
}

/// A printf format that carries its own line feed.
template <typename... Values>
void traceFormat(const char *format, Values... values)
{
    if (traceOn())
        trace::writeFormat(format, values...);
}

/// The same through GLib's print function, which a host may have redirected.
template <typename... Values>
void traceGlib(const char *format, Values... values)
{
    if (traceOn())
        trace::writeGlib(format, values...);
}

#endif
