#include "tests/fixture.h"

#include <sys/mman.h>
#include <sys/ucontext.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

// Tells the order in which the four bytes at the start of a record are written. The record's page
// is made read-only; a write faults, is let through as a single step, and is looked at behind it.

namespace
{

constexpr std::size_t pageSize = 4096;
constexpr greg_t singleStep = 0x100; // the trap flag of x86

char *page = nullptr; // the record lies at its end
char seen[4];
char history[64]; // b, d, e or x for each change of busy, done, error or execute
std::size_t length = 0;

void beforeWrite(int, siginfo_t *info, void *context)
{
    const auto *address = static_cast<char *>(info->si_addr);
    if (address < page || address >= page + pageSize)
        std::abort();
    mprotect(page, pageSize, PROT_READ | PROT_WRITE);
    static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL] |= singleStep;
}

void afterWrite(int, siginfo_t *, void *context)
{
    static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL] &= ~singleStep;
    const char *now = page + pageSize - sizeof(MediaPlayerParams);
    for (std::size_t i = 0; i < sizeof seen; ++i) {
        if (now[i] != seen[i] && length < sizeof history)
            history[length++] = "bdex"[i];
    }
    std::memcpy(seen, now, sizeof seen);
    mprotect(page, pageSize, PROT_READ);
}

/// What `writes` changes, in a record whose report nobody has written yet.
QByteArray orderOf(MediaPlayerParams &record, const std::function<void()> &writes)
{
    for (auto *byte : {&record.done, &record.error, &record.busy})
        storeRelaxed(*byte, 2);
    page = reinterpret_cast<char *>(&record + 1) - pageSize;
    std::memcpy(seen, &record, sizeof seen);
    length = 0;
    mprotect(page, pageSize, PROT_READ);
    writes();
    mprotect(page, pageSize, PROT_READ | PROT_WRITE);
    return QByteArray(history, qsizetype(length));
}

} // namespace

class ReportsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesAreWrittenInTheirOrder()
    {
        struct sigaction action = {};
        action.sa_flags = SA_SIGINFO;
        for (const auto &[signal, handler] :
             {std::pair(SIGSEGV, &beforeWrite), {SIGTRAP, &afterWrite}}) {
            action.sa_sigaction = handler;
            QCOMPARE(sigaction(signal, &action, nullptr), 0);
        }
        Host host(Host::Quick);
        host.open(media("tone.flac"));
        AWAIT_EQUAL(host.state(), 3);
        MediaPlayerView *const view = host.view();
        {
            // The player's thread has its signals blocked, so it must not come to write.
            const std::lock_guard guard(view->lock);
            storeRelease(view->pipelineActive, false);
        }

        const auto command = [&host] {
            storeRelease(host.record.execute, 1);
            AWAIT_EQUAL(int(loadAcquire(host.record.execute)), 0);
        };
        for (const auto &[code, order] : {std::pair(6, "xdebx"), {0, "xdebx"}, {7, "xx"}}) {
            storeRelaxed(host.record.command, code);
            QCOMPARE(orderOf(host.record, command), order);
        }
        enableWorkaround = 1;
        QCOMPARE(orderOf(host.record, [&host] { host.registerRecord(); }), "bed");
        enableWorkaround = 0;
        const std::lock_guard guard(view->lock);
        QCOMPARE(orderOf(host.record, [view] { view->handleError(); }), "edb");
    }
};

PLAYER_TEST_MAIN(ReportsTest)
#include "reports_test.moc"
