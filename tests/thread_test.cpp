#include "tests/fixture.h"
#include "update/cThread.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace
{

constexpr int stackSize = 131072;

QByteArray nameOf(pid_t thread)
{
    QFile file(QStringLiteral("/proc/self/task/%1/comm").arg(thread));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

/// The number of the thread; 0 where it is refused, or where a signal of the host reaches it.
pid_t startIdle(cThread &wrapper, char *name)
{
    static std::atomic<pid_t> thread;
    thread = 0;
    const auto idle = [](void *) -> void * {
        sigset_t blocked;
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        if (!sigismember(&blocked, SIGALRM))
            return nullptr;
        for (thread = gettid();;)
            usleep(1000); // a cancellation point
    };
    wrapper.threadInit(0, 99, 99, stackSize); // inherits: policy and priority are unread
    wrapper.createThread(idle, nullptr, name);
    blockUntil([] { return thread != 0; });
    return thread;
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
        QCOMPARE(wrapper.createThread(nullptr, nullptr, nullptr), 0);
        QVERIFY(!wrapper.isActive());
        QVERIFY(wrapper.detachThread() != 0);
        QVERIFY(wrapper.destroyThread() != 0);
    }

    void aThreadIsJoinedOnce()
    {
        cThread ended;
        QCOMPARE(ended.threadInit(1, SCHED_OTHER, 0, stackSize), 0);
        QCOMPARE(ended.trylockThreadMutex(), 0);
        QCOMPARE(ended.trylockThreadMutex(), EBUSY);
        const auto endAtOnce = [](void *self) -> void * {
            static_cast<cThread *>(self)->unlockThreadMutex();
        };
        ended.createThread(endAtOnce, &ended, nullptr);
        AWAIT(!ended.isActive());
        QCOMPARE(ended.trylockThreadMutex(), 0);

        // The handle of the one that ended may name this one.
        char name[] = "Fitting";
        cThread other;
        const pid_t first = startIdle(other, name);
        QVERIFY(!ended.isActive());
        QCOMPARE(ended.destroyThread(), 0); // although the claim is held
        QVERIFY(other.isActive());
        QCOMPARE(nameOf(first), "Fitting");

        QCOMPARE(nameOf(startIdle(other, nullptr)), "Unnamed"); // replaces the first
        AWAIT(nameOf(first).isEmpty()); // the system may take a moment longer than the join
        other.destroyThread();
    }

    void aDetachedThreadIsDestroyedToo()
    {
        static std::atomic<bool> inside, left;
        const auto idle = [](void *) -> void * {
            const auto leave = [](void *) {
                usleep(50'000); // long enough for a destroyThread() that does not wait
                left = true;
            };
            pthread_cleanup_push(leave, nullptr);
            for (inside = true;;)
                usleep(1000);
            pthread_cleanup_pop(0);
        };
        cThread wrapper;
        QCOMPARE(wrapper.threadInit(0, 0, 0, stackSize), 0);
        wrapper.createThread(idle, nullptr, nullptr);
        QVERIFY(blockUntil([] { return inside.load(); }));
        QCOMPARE(wrapper.detachThread(), 0);
        QCOMPARE(wrapper.destroyThread(), 0);
        QVERIFY(left);
    }

    void aNewConfigurationBringsAFreeMutex()
    {
        cThread wrapper;
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(wrapper.threadInit(0, 0, 0, stackSize), 0);
            QCOMPARE(wrapper.trylockThreadMutex(), 0);
        }
    }
};

PLAYER_TEST_MAIN(ThreadTest)
#include "thread_test.moc"
