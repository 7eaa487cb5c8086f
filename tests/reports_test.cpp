#include "tests/fixture.h"

#include <sys/mman.h>
#include <sys/ucontext.h>

#include <csignal>
#include <cstring>

// Tells the order in which the four bytes at the start of a record are written. The record's page
// is made read-only; a write faults, is let through as a single step, and is looked at behind it.

namespace
{

constexpr std::size_t pageSize = 4096;
constexpr greg_t singleStep = 0x100; // the trap flag of x86
constexpr const char *names[] = {"busy", "done", "error", "execute"};

char *page = nullptr;
char seen[4];
char history[64]; // indices into `names`
std::size_t length = 0;

void beforeWrite(int, siginfo_t *info, void *context)
{
    const auto *address = static_cast<char *>(info->si_addr);
    if (address < page || address >= page + pageSize) {
        std::signal(SIGSEGV, SIG_DFL);
        return;
    }
    mprotect(page, pageSize, PROT_READ | PROT_WRITE);
    static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL] |= singleStep;
}

void afterWrite(int, siginfo_t *, void *context)
{
    static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL] &= ~singleStep;
    const char *now = page + pageSize - sizeof(MediaPlayerParams);
    for (std::size_t i = 0; i < sizeof seen; ++i) {
        if (now[i] != seen[i] && length < sizeof history)
            history[length++] = char(i);
    }
    std::memcpy(seen, now, sizeof seen);
    mprotect(page, pageSize, PROT_READ);
}

/// Sets the record's report to values that nobody writes, and watches it while it lives.
class Watched
{
public:
    explicit Watched(MediaPlayerParams &record)
    {
        for (auto *byte : {&record.done, &record.error, &record.busy})
            storeRelaxed(*byte, 2);
        page = reinterpret_cast<char *>(&record) + sizeof record - pageSize;
        std::memcpy(seen, &record, sizeof seen);
        length = 0;
        mprotect(page, pageSize, PROT_READ);
    }
    ~Watched() { mprotect(page, pageSize, PROT_READ | PROT_WRITE); }

    /// The names of the bytes, in the order in which they changed.
    QByteArrayList order() const
    {
        QByteArrayList written;
        for (std::size_t i = 0; i < length; ++i)
            written += names[int(history[i])];
        return written;
    }
};

} // namespace

class ReportsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        struct sigaction action {
        };
        action.sa_flags = SA_SIGINFO;
        action.sa_sigaction = beforeWrite;
        QCOMPARE(sigaction(SIGSEGV, &action, nullptr), 0);
        action.sa_sigaction = afterWrite;
        QCOMPARE(sigaction(SIGTRAP, &action, nullptr), 0);
    }

    void bytesAreWrittenInTheirOrder()
    {
        Host host(Host::Quick);
        host.open(media("tone.flac"));
        AWAIT_EQUAL(host.state(), 3);
        {
            // The player's thread has its signals blocked, so it must not come to write.
            const std::lock_guard guard(host.view()->lock);
            storeRelease(host.view()->pipelineActive, false);
        }

        for (const int command : {6, int(MediaPlayerCommandLoad), int(MediaPlayerCommandRebind)}) {
            storeRelaxed(host.record.command, command);
            Watched watched(host.record);
            storeRelease(host.record.execute, 1);
            AWAIT_EQUAL(int(loadAcquire(host.record.execute)), 0);
            QCOMPARE(watched.order(),
                     command == MediaPlayerCommandRebind
                         ? QByteArrayList({"execute", "execute"})
                         : QByteArrayList({"execute", "done", "error", "busy", "execute"}));
        }
        {
            enableWorkaround = 1;
            Watched watched(host.record);
            host.registerRecord();
            enableWorkaround = 0;
            QCOMPARE(watched.order(), QByteArrayList({"busy", "error", "done"}));
        }
        {
            GError *error = g_error_new_literal(GST_CORE_ERROR, GST_CORE_ERROR_FAILED, "a test's");
            Watched watched(host.record);
            {
                const std::lock_guard guard(host.view()->lock);
                host.view()->handle_message(
                    gst_message_new_error(GST_OBJECT(host.view()->pipeline), error, nullptr));
            }
            g_error_free(error);
            QCOMPARE(watched.order(), QByteArrayList({"error", "done", "busy"}));
        }
    }
};

PLAYER_TEST_MAIN(ReportsTest)
#include "reports_test.moc"
