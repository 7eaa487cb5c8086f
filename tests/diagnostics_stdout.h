#ifndef DIAGNOSTICS_STDOUT_H
#define DIAGNOSTICS_STDOUT_H

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QScopeGuard>
#include <QtCore/QThread>

#include <cstdio>
#include <mutex>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

/// Records what the process writes to standard output while the object lives, by the thread that
/// wrote it. What bypasses the stream (plain write() on descriptor 1) comes back as `bypassed()`.
class StdoutRecorder
{
public:
    StdoutRecorder() : m_file(memfd_create("stdout", MFD_CLOEXEC)), m_savedFile(dup(STDOUT_FILENO))
    {
        fflush(stdout);
        dup2(m_file, STDOUT_FILENO);
        cookie_io_functions_t functions = {};
        functions.write = [](void *recorder, const char *bytes, std::size_t size) {
            static_cast<StdoutRecorder *>(recorder)->record(QByteArray(bytes, qsizetype(size)));
            return ssize_t(size);
        };
        m_stream = fopencookie(this, "w", functions);
        setvbuf(m_stream, nullptr, _IOLBF, 4096);
        m_savedStream = std::exchange(stdout, m_stream);
    }

    /// No other thread may be writing at this moment.
    ~StdoutRecorder()
    {
        stdout = m_savedStream;
        fclose(m_stream);
        dup2(m_savedFile, STDOUT_FILENO);
        close(m_savedFile);
        close(m_file);
    }

    /// All that was written so far, in the order of the whole process.
    QByteArray text() const
    {
        fflush(stdout);
        const std::lock_guard guard(m_mutex);
        return m_text;
    }

    /// The same of each thread.
    QHash<Qt::HANDLE, QByteArray> textByThread() const
    {
        fflush(stdout);
        const std::lock_guard guard(m_mutex);
        return m_byThread;
    }

    QByteArray bypassed() const
    {
        QFile file;
        if (!file.open(m_file, QIODevice::ReadOnly) || !file.seek(0))
            return "the file behind standard output cannot be read";
        return file.readAll();
    }

private:
    Q_DISABLE_COPY_MOVE(StdoutRecorder)

    void record(const QByteArray &bytes)
    {
        const std::lock_guard guard(m_mutex);
        m_text += bytes;
        m_byThread[QThread::currentThreadId()] += bytes;
    }

    const int m_file;
    const int m_savedFile;
    FILE *m_stream = nullptr;
    FILE *m_savedStream = nullptr;
    mutable std::mutex m_mutex;
    QByteArray m_text;
    QHash<Qt::HANDLE, QByteArray> m_byThread;
};

#endif
