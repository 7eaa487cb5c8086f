#include "tests/fixture.h"
#include "update/cThread.h"

#include <sys/mman.h>
#include <sys/ucontext.h>

#include <csignal>
#include <cstdlib>

// Tells the order in which the four bytes at the start of a record are written. The record's page
// is made read-only; a write faults, is let through as a single step, and is looked at behind it.

namespace
{

constexpr std::size_t pageSize = 4096;
constexpr greg_t singleStep = 0x100; // the trap flag of x86

char *page = nullptr; // the record lies at its end
char *written = nullptr;
char history[64]; // each write of busy, done, error and execute: b, d, e or x; capitals raise
std::size_t length = 0;

void onWrite(int signal, siginfo_t *info, void *context)
{
    const bool fault = signal == SIGSEGV;
    if (fault)
        written = static_cast<char *>(info->si_addr);
    const auto byte = std::size_t(written - page) - (pageSize - sizeof(MediaPlayerParams));
    if (byte >= sizeof(MediaPlayerParams))
        std::abort();
    mprotect(page, pageSize, fault ? PROT_READ | PROT_WRITE : PROT_READ);
    greg_t &flags = static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL];
    flags = fault ? flags | singleStep : flags & ~singleStep;
    if (!fault && byte < 4 && length < sizeof history)
        history[length++] = (*written ? "BDEX" : "bdex")[byte];
}

QByteArray orderOf(MediaPlayerParams &record, const std::function<void()> &writes)
{
    page = reinterpret_cast<char *>(&record + 1) - pageSize;
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
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
        host.view()->thread->destroyThread(); // it has its signals blocked, so it must not write

        for (const auto &[command, order] : {std::pair(MediaPlayerCommandVolume, "Debx"),
                                             {MediaPlayerCommandLoad, "Debx"},
                                             {MediaPlayerCommandRebind, "x"}}) {
            host.record.command = command;
            QCOMPARE(orderOf(host.record, [&host] { host.view()->updateValues(); }), order);
        }
        enableWorkaround = 1;
        QCOMPARE(orderOf(host.record, [&host] { host.registerRecord(); }), "beD");
        enableWorkaround = 0;
        const auto fail = [&host] {
            GError *const error =
                g_error_new_literal(GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED, "");
            host.view()->handle_message(
                gst_message_new_error(GST_OBJECT(host.view()->pipeline), error, nullptr));
            g_error_free(error);
        };
        QCOMPARE(orderOf(host.record, fail), "Edb");

        // An end writes the state that it leads to, before a pass publishes it.
        storeRelaxed(host.record.state, 0);
        GstElement *const pipeline = host.view()->pipeline;
        host.view()->handle_message(gst_message_new_eos(GST_OBJECT(pipeline)));
        QCOMPARE(host.state(), GST_STATE_PAUSED);
    }
};

PLAYER_TEST_MAIN(ReportsTest)
#include "reports_test.moc"
