#include "soakWatch.h"

#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

#include <QtCore/QDir>
#include <QtGui/QGuiApplication>

#include <malloc.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace
{

// A command may wait for others' state changes on the same GUI thread, each of which may take its
// second, and a sanitizer makes all of it slower.
constexpr int bearable = 30'000; // ms
constexpr unsigned hangSeconds = 90;

// Plain arrays: they are printed from signal handlers too.
using Line = std::array<char, 160>;
std::array<Line, 100> lines;
std::size_t lineCount = 0;
char title[80];

void print(const char *text)
{
    [[maybe_unused]] const auto written = write(STDERR_FILENO, text, std::strlen(text));
}

void printSteps(const char *why)
{
    print(why);
    print("\n");
    for (std::size_t i = lineCount > lines.size() ? lineCount - lines.size() : 0; i < lineCount;
         ++i)
        print(lines[i % lines.size()].data());
    print(title);
}

void onSignal(int signal)
{
    printSteps(signal == SIGALRM ? "the GUI thread hangs" : "a crash");
    std::signal(SIGABRT, SIG_DFL);
    std::abort(); // leaves a core of the moment
}

void onLog(const char *domain, GLogLevelFlags level, const char *message, gpointer)
{
    if (level & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL))
        SoakLog::fail(QStringLiteral("%1 critical: %2")
                          .arg(QString::fromUtf8(domain), QString::fromUtf8(message)));
    std::fprintf(stderr, "%s: %s\n", domain, message);
}

int entriesOf(const char *folder)
{
    return int(QDir(QLatin1String(folder)).entryList(QDir::AllEntries | QDir::System).size());
}

int liveGstObjects()
{
    int count = -1;
    GList *tracers = gst_tracing_get_active_tracers();
    for (GList *each = tracers; each; each = each->next) {
        GstStructure *live = nullptr;
        g_signal_emit_by_name(each->data, "get-live-objects", &live);
        if (live)
            count =
                int(gst_value_list_get_size(gst_structure_get_value(live, "live-objects-list")));
        g_clear_pointer(&live, gst_structure_free);
    }
    g_list_free_full(tracers, gst_object_unref);
    return count;
}

} // namespace

void SoakLog::start(std::uint32_t seed)
{
    std::snprintf(title, sizeof title, "Again with SOAK_SEED=%u\n", seed);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGABRT, SIGALRM})
        std::signal(signal, onSignal);
    g_log_set_default_handler(onLog, nullptr);
    alarm(hangSeconds);
}

void SoakLog::step(const QString &what)
{
    alarm(hangSeconds);
    Line &line = lines[lineCount % lines.size()];
    std::snprintf(line.data(), line.size(), "%6zu %s\n", lineCount, qPrintable(what));
    ++lineCount;
}

void SoakLog::fail(const QString &why)
{
    printSteps(qPrintable(QStringLiteral("FAILED: ") + why));
    _exit(1);
}

void SoakWatch::bound(QElapsedTimer &since, bool condition, const char *what)
{
    if (!condition)
        since.invalidate();
    else if (!since.isValid())
        since.start();
    else if (since.elapsed() > bearable)
        SoakLog::fail(QLatin1String(what));
}

void SoakWatch::check()
{
    MediaPlayerParams &record = player.fields();
    MediaPlayerView *const view = record.view;
    bound(raised, view && loadAcquire(record.execute) != 0, "execute stays raised");
    if (view != seenView)
        restored = false;
    seenView = view;
    if (view)
        checkView(view);
}

void SoakWatch::checkView(MediaPlayerView *view)
{
    // By its address alone, since it may be anything.
    const QWindowList windows = QGuiApplication::allWindows();
    if (std::none_of(windows.cbegin(), windows.cend(),
                     [view](QWindow *window) { return window == view; }))
        SoakLog::fail(QStringLiteral("view names no living player"));
    if (view->params != &player.fields())
        SoakLog::fail(QStringLiteral("view names the player of another record"));
    bound(untold, view->ending, "a player that is ending does not end");
    if (view->ending)
        return;

    const bool attached = player.fields().attached != 0;
    restored = restored || attached;
    const bool inTree = view->videoObject && view->videoObject->parentItem();
    // A restore that meets no host item attaches the picture to nothing; the next one mends it.
    bound(untrue, restored && player.isShown() && attached != inTree,
          "attached does not tell where the picture is");
    // A player that is marked for its next registration does not park.
    bound(hidden, player.hasControl() && !view->rebindPending && player.isShown() != attached,
          "a show or hide is not carried out");

    for (const auto &entry : std::as_const(view->pipelineCache)) {
        if (GST_STATE(entry->pipeline) > GST_STATE_READY && entry->pipeline != view->pipeline)
            SoakLog::fail(QStringLiteral("a pipeline above READY that is not the current one"));
    }
}

SoakLevels SoakLevels::now()
{
    return {entriesOf("/proc/self/task"), entriesOf("/proc/self/fd"), liveGstObjects(),
            mallinfo2().uordblks};
}

QString SoakLevels::text() const
{
    return QStringLiteral("%1 threads, %2 descriptors, %3 GStreamer objects, heap %4 KiB")
        .arg(threads)
        .arg(descriptors)
        .arg(gstObjects)
        .arg(heap / 1024);
}
