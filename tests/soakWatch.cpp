#include "soakWatch.h"
#include "fixture.h"

#include <malloc.h>

#include <csignal>
#include <cstdarg>

namespace
{

// Plain arrays: they are printed from signal handlers too.
std::array<char[160], 100> lines;
std::size_t lineCount = 0;
unsigned seedOfAll = 0;

unsigned liveGstObjects()
{
    GList *tracers = gst_tracing_get_active_tracers();
    GstStructure *live = nullptr;
    g_signal_emit_by_name(tracers->data, "get-live-objects", &live);
    const auto count = gst_value_list_get_size(gst_structure_get_value(live, "live-objects-list"));
    gst_structure_free(live);
    g_list_free_full(tracers, gst_object_unref);
    return count;
}

} // namespace

// What the sanitizer finds ends as a crash does.
extern "C" [[gnu::visibility("default")]] const char *__asan_default_options()
{
    return "abort_on_error=1";
}

void startLog(unsigned seed)
{
    seedOfAll = seed;
    std::fprintf(stderr, "SOAK_SEED=%u\n", seed);
    for (const int each : {SIGSEGV, SIGBUS, SIGFPE, SIGABRT, SIGTRAP})
        std::signal(each, [](int) { fail("a crash"); });
    std::signal(SIGALRM, [](int) { fail("the GUI thread hangs"); });
}

void logStep(const char *format, ...)
{
    va_list values;
    va_start(values, format);
    std::vsnprintf(lines[lineCount++ % lines.size()], sizeof lines[0], format, values);
    va_end(values);
}

void fail(const char *why)
{
    // Not by stdio, whose lock the crash may hold.
    for (std::size_t i = 0; i < lines.size(); ++i)
        dprintf(STDERR_FILENO, "%s\n", lines[(lineCount + i) % lines.size()]);
    dprintf(STDERR_FILENO, "FAILED: %s\nAgain with SOAK_SEED=%u\n", why, seedOfAll);
    std::signal(SIGABRT, SIG_DFL);
    std::abort(); // leaves a core of the moment
}

void check(const Player &player)
{
    alarm(90); // s without a poll: the GUI thread hangs
    MediaPlayerView *const view = player.fields().view;
    // First by its address alone, since it may be anything.
    if (view && (!QGuiApplication::allWindows().contains(view) || view->params != &player.fields()))
        fail("view names no living player of this record");
    if (!view || view->life.deletionScheduled)
        return;
    for (const auto &entry : std::as_const(view->pipelineCache)) {
        if (entry->pipeline != view->pipeline && GST_STATE(entry->pipeline) > GST_STATE_READY)
            fail("a pipeline above READY that is not the current one");
    }
}

const char *unsettled(const Player &player)
{
    MediaPlayerView *const view = player.fields().view;
    // A player that is marked for its next registration answers then, and does not park.
    if (!view || view->rebindPending)
        return nullptr;
    const bool attached = player.fields().attached != 0;
    const bool inTree = view->videoObject && view->videoObject->parentItem();
    return view->life.deletionScheduled ? "a player that is ending does not end"
        : !player.isIdle()              ? "a command is not answered"
        : player.hasControl() && player.isShown() != attached ? "a show or hide is not carried out"
        : attached != inTree ? "attached does not tell where the picture is"
                             : nullptr;
}

void checkLevels(bool warmUp)
{
    // Threads, descriptors, KiB of heap, GStreamer objects. Threads of GLib's pools come and go
    // with a descriptor each, and the heap moves to and fro.
    constexpr std::array<qint64, 3> tolerance {0, 8, 12 << 10};
    static QList<qint64> allowed(4);
    // GStreamer's item forgets 27 KiB in each window that it leaves for another: 0.1 MiB a round.
    // A GL context that is left behind would be 10 MiB.
    if (!warmUp)
        allowed[2] += 256;
    QList<qint64> now;
    const auto back = [&] {
        now = {entriesOf("/proc/self/task"), entriesOf("/proc/self/fd"),
               qint64(mallinfo2().uordblks >> 10), liveGstObjects()};
        for (int i = 0; warmUp && i < 3; ++i)
            allowed[i] = qMax(allowed[i], now[i] + tolerance[i]);
        return std::equal(now.cbegin(), now.cend(), allowed.cbegin(), std::less_equal<>());
    };
    const bool isBack = QTest::qWaitFor(back, endingBound); // pools and deletions take a moment
    qDebug() << "threads, descriptors, KiB, GStreamer objects:" << now << "allowed:" << allowed;
    if (!isBack)
        fail("more is left behind than is allowed");
}
