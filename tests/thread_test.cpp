#include "tests/fixture.h"
#include "update/cThread.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace
{

std::atomic<int> runs;
std::atomic<pid_t> lastThread;

void *idle(void *)
{
    lastThread = gettid();
    ++runs;
    for (;;)
        usleep(1000); // a cancellation point
}

void *endAtOnce(void *wrapper)
{
    ++runs;
    static_cast<cThread *>(wrapper)->unlockThreadMutex();
}

QByteArray nameOf(pid_t thread)
{
    QFile file(QStringLiteral("/proc/self/task/%1/comm").arg(thread));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

/// Configures the wrapper and starts the routine; false where a step refuses.
bool start(cThread &wrapper, void *(*routine)(void *), char *name = nullptr)
{
    const int before = runs;
    return wrapper.threadInit(0, 0, 0, 131072) == 0
        && wrapper.createThread(routine, &wrapper, name) == 0
        && blockUntil([before] { return runs > before; });
}

} // namespace

class ThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRefusedStackIsTold()
    {
        cThread wrapper;
        Captured output(STDOUT_FILENO);
        const int result = wrapper.threadInit(1, 0, 0, 1);
        const QByteArray text = output.text();
        QCOMPARE(text, "Thread configuration failed: 22\n\n");
        QCOMPARE(result, EINVAL);
        QVERIFY(wrapper.trylockThreadMutex() != 0); // there is none
        QCOMPARE(wrapper.createThread(idle, nullptr, nullptr), 0);
        QVERIFY(!wrapper.isActive());
        QVERIFY(wrapper.destroyThread() != 0);
    }

    void schedulingIsInheritedUnlessAskedFor()
    {
        for (const int inherit : {0, 2, -1}) {
            cThread wrapper;
            QCOMPARE(wrapper.threadInit(inherit, 99, 99, 131072), 0); // policy and priority unread
            QCOMPARE(wrapper.destroyThread(), 0);
        }
        cThread wrapper;
        Captured output(STDOUT_FILENO);
        QCOMPARE(wrapper.threadInit(1, 99, 0, 131072), EINVAL);
    }

    void theClaimIsExclusive()
    {
        cThread wrapper;
        QCOMPARE(wrapper.threadInit(1, SCHED_OTHER, 0, 131072), 0);
        QCOMPARE(wrapper.trylockThreadMutex(), 0);
        QCOMPARE(wrapper.trylockThreadMutex(), EBUSY);
        QCOMPARE(wrapper.createThread(idle, nullptr, nullptr), 0);
        QVERIFY(wrapper.isActive());
        QCOMPARE(wrapper.destroyThread(), 0); // although the claim is held
        QVERIFY(!wrapper.isActive());
    }

    void threadsGetTheirNames()
    {
        char fitting[] = "Fitting";
        char tooLong[] = "MediaPlayerUpdate";
        const QByteArray inherited = nameOf(gettid());
        for (const auto &[name, expected] : std::initializer_list<std::pair<char *, QByteArray>> {
                 {fitting, "Fitting"}, {nullptr, "Unnamed"}, {tooLong, inherited}}) {
            cThread wrapper;
            QVERIFY(start(wrapper, idle, name));
            QCOMPARE(nameOf(lastThread), expected);
            QCOMPARE(wrapper.destroyThread(), 0);
        }
    }

    void aThreadThatEndedIsJoinedOnce()
    {
        cThread wrapper;
        QCOMPARE(wrapper.threadInit(0, 0, 0, 131072), 0);
        QCOMPARE(wrapper.trylockThreadMutex(), 0);
        QCOMPARE(wrapper.createThread(endAtOnce, &wrapper, nullptr), 0);
        QVERIFY(blockUntil([&wrapper] { return !wrapper.isActive(); }));
        QCOMPARE(wrapper.trylockThreadMutex(), 0); // the routine has given it back

        // Its handle may name a thread that somebody else started since.
        cThread other;
        QVERIFY(start(other, idle));
        QVERIFY(!wrapper.isActive());
        QCOMPARE(wrapper.destroyThread(), 0);
        QVERIFY(other.isActive());
        QCOMPARE(other.destroyThread(), 0);
    }

    void aNewThreadReplacesTheOld()
    {
        cThread wrapper;
        QVERIFY(start(wrapper, idle));
        const pid_t first = lastThread;
        QVERIFY(start(wrapper, idle));
        QVERIFY(lastThread != first);
        QVERIFY(nameOf(first).isEmpty());
        wrapper.destroyThread();
        QVERIFY(nameOf(lastThread).isEmpty());
    }

    void abortIsRemembered()
    {
        cThread wrapper;
        QVERIFY(!wrapper.getAbort());
        wrapper.setAbort(true);
        QVERIFY(wrapper.getAbort());
        QVERIFY(wrapper.detachThread() != 0); // nothing to detach
    }
};

PLAYER_TEST_MAIN(ThreadTest)
#include "thread_test.moc"
