#ifndef DIAGNOSTICS_RECORDER_H
#define DIAGNOSTICS_RECORDER_H

#include "tests/fixture.h"

#include <cstdio>
#include <mutex>
#include <utility>

/// Records the lines of standard output by the thread that wrote them, while the object lives.
class Recorder
{
public:
    Recorder()
    {
        cookie_io_functions_t functions = {};
        functions.write = [](void *self, const char *bytes, std::size_t size) {
            static_cast<Recorder *>(self)->record(QByteArray(bytes, qsizetype(size)));
            return ssize_t(size);
        };
        m_stream = fopencookie(this, "w", functions);
        setvbuf(m_stream, nullptr, _IOLBF, 4096);
        m_before = std::exchange(stdout, m_stream);
    }

    /// No other thread may be writing any more.
    ~Recorder()
    {
        stdout = m_before;
        fclose(m_stream);
    }

    struct Written {
        QByteArray gui, update, streaming;
    };

    /// What came since this was last asked for, once there is at least as much as is expected.
    Written take(const Written &expected)
    {
        [[maybe_unused]] const bool came = QTest::qWaitFor(
            [&] {
                const std::lock_guard guard(m_mutex);
                return m_new.gui.size() >= expected.gui.size()
                    && m_new.update.size() >= expected.update.size()
                    && m_new.streaming.size() >= expected.streaming.size();
            },
            patience);
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_new, {});
    }

private:
    Q_DISABLE_COPY_MOVE(Recorder)

    void record(const QByteArray &bytes)
    {
        const std::lock_guard guard(m_mutex);
        const auto thread = QThread::currentThreadId();
        if (bytes.startsWith("Update invoke"))
            m_update = thread;
        (thread == m_gui          ? m_new.gui
             : thread == m_update ? m_new.update
                                  : m_new.streaming) += bytes;
    }

    const Qt::HANDLE m_gui = QThread::currentThreadId();
    Qt::HANDLE m_update = nullptr;
    FILE *m_stream = nullptr;
    FILE *m_before = nullptr;
    std::mutex m_mutex;
    Written m_new;
};

#endif
