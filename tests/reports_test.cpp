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
char history[64]; // each change of busy, done, error and execute: b, d, e or x; capitals raise
std::size_t length = 0;

void onWrite(int signal, siginfo_t *info, void *context)
{
    const bool fault = signal == SIGSEGV;
    if (fault && (info->si_addr < page || info->si_addr >= page + pageSize))
        std::abort();
    mprotect(page, pageSize, fault ? PROT_READ | PROT_WRITE : PROT_READ);
    greg_t &flags = static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL];
    flags = fault ? flags | singleStep : flags & ~singleStep;
    const char *now = page + pageSize - sizeof(MediaPlayerParams);
    for (std::size_t i = 0; i < sizeof seen; ++i) {
        if (now[i] != seen[i] && length < sizeof history)
            history[length++] = (now[i] ? "BDEX" : "bdex")[i];
        seen[i] = now[i];
    }
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
        action.sa_sigaction = onWrite;
        for (const int signal : {SIGSEGV, SIGTRAP})
            QCOMPARE(sigaction(signal, &action, nullptr), 0);
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
        for (const auto &[code, order] : {std::pair(6, "XDebx"), {0, "XDebx"}, {7, "Xx"}}) {
            storeRelaxed(host.record.command, code);
            QCOMPARE(orderOf(host.record, command), order);
        }
        enableWorkaround = 1;
        QCOMPARE(orderOf(host.record, [&host] { host.registerRecord(); }), "beD");
        enableWorkaround = 0;
        const std::lock_guard guard(view->lock);
        QCOMPARE(orderOf(host.record, [view] { view->handleError(); }), "Edb");
    }
};

PLAYER_TEST_MAIN(ReportsTest)
#include "reports_test.moc"
