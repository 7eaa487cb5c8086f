#include "tests/fixture.h"
#include "update/cThread.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace
{

constexpr int stackSize = 131072;

std::atomic<pid_t> lastThread;

void *idle(void *)
{
    lastThread = gettid();
    for (;;)
        usleep(1000); // a cancellation point
}

void *endAtOnce(void *wrapper)
{
    static_cast<cThread *>(wrapper)->unlockThreadMutex();
}

QByteArray nameOf(pid_t thread)
{
    QFile file(QStringLiteral("/proc/self/task/%1/comm").arg(thread));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

/// The system may take a moment longer than the join.
bool hasGone(pid_t thread)
{
    return blockUntil([thread] { return nameOf(thread).isEmpty(); });
}

/// False where a step refuses.
bool startIdle(cThread &wrapper, char *name = nullptr)
{
    lastThread = 0;
    return wrapper.threadInit(0, 99, 99, stackSize) == 0 // inherits: policy and priority are unread
        && wrapper.createThread(idle, nullptr, name) == 0
        && blockUntil([] { return lastThread != 0; });
}

} // namespace

class ThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRefusedConfigurationIsTold()
    {
        cThread wrapper;
        const auto refused = [&wrapper](int policy, int size) {
            Captured output(STDOUT_FILENO);
            const int error = wrapper.threadInit(1, policy, 0, size);
            return output.text() + QByteArray::number(error);
        };
        QCOMPARE(refused(SCHED_OTHER, 1), "Thread configuration failed: 22\n\n22");
        QCOMPARE(refused(99, stackSize), "Thread configuration failed: 22\n\n22");
        QVERIFY(wrapper.trylockThreadMutex() != 0); // there is none
        QCOMPARE(wrapper.createThread(idle, nullptr, nullptr), 0);
        QVERIFY(!wrapper.isActive());
        QVERIFY(wrapper.detachThread() != 0);
        QVERIFY(wrapper.destroyThread() != 0);
    }

    void aNewThreadReplacesTheOld()
    {
        char fitting[] = "Fitting", tooLong[] = "MediaPlayerUpdate";
        cThread wrapper;
        pid_t previous = 0;
        for (const auto &[name, expected] : std::initializer_list<std::pair<char *, QByteArray>> {
                 {fitting, "Fitting"}, {nullptr, "Unnamed"}, {tooLong, nameOf(gettid())}}) {
            QVERIFY(startIdle(wrapper, name));
            QCOMPARE(nameOf(lastThread), expected);
            QVERIFY(hasGone(previous));
            previous = lastThread;
        }
        wrapper.destroyThread();
        QVERIFY(hasGone(previous));
    }

    void aThreadThatEndedIsJoinedOnceAndGivesItsClaimBack()
    {
        cThread wrapper;
        QCOMPARE(wrapper.threadInit(1, SCHED_OTHER, 0, stackSize), 0);
        QCOMPARE(wrapper.trylockThreadMutex(), 0);
        QCOMPARE(wrapper.trylockThreadMutex(), EBUSY);
        QCOMPARE(wrapper.createThread(endAtOnce, &wrapper, nullptr), 0);
        QVERIFY(blockUntil([&wrapper] { return !wrapper.isActive(); }));
        QCOMPARE(wrapper.trylockThreadMutex(), 0);

        // Its handle may name a thread that somebody else started since.
        cThread other;
        QVERIFY(startIdle(other));
        QVERIFY(!wrapper.isActive());
        QCOMPARE(wrapper.destroyThread(), 0); // although the claim is held
        QVERIFY(other.isActive());
        QCOMPARE(other.destroyThread(), 0);
    }
};

PLAYER_TEST_MAIN(ThreadTest)
#include "thread_test.moc"
