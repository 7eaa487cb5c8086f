#include "RecordLink.h"

#include <MediaPlayer/BasicWidget.h>

#include <atomic>

using namespace std::chrono_literals;

namespace MediaPlayer
{
namespace
{

// The plug-in looks at its records every 50 ms and publishes every 150 ms or so.
constexpr auto lookInterval = 40ms;

template <typename T>
T readShared(T &field)
{
    return std::atomic_ref<T>(field).load(std::memory_order_relaxed);
}

template <typename T>
void writeShared(T &field, T value)
{
    std::atomic_ref<T>(field).store(value, std::memory_order_relaxed);
}

} // namespace

RecordLink::RecordLink() : m_record(std::make_shared<MediaPlayerParams>())
{
    m_record->volume = 1.0;
    m_record->opacity = 1.0;
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(lookInterval);
    connect(&m_timer, &QTimer::timeout, this, &RecordLink::look);
}

void RecordLink::registerAt(BasicWidget *control)
{
    char key[] = "RegisterParameter";
    control->SysNativeControlSetSettings(key, m_record.get());
    auto *const view = reinterpret_cast<QObject *>(m_record->view);
    if (view && view != m_watched) {
        m_watched = view;
        connect(view, &QObject::destroyed, [shared = m_record] {});
        connect(view, &QObject::destroyed, this, [this] { m_watched = nullptr; });
    }
    m_timer.start();
}

void RecordLink::send(int command)
{
    m_running = true;
    m_error = readShared(m_record->error) != 0 || m_error;
    writeShared(m_record->done, std::int8_t(0));
    writeShared(m_record->error, std::int8_t(0));
    writeShared(m_record->busy, std::int8_t(1));
    writeShared(m_record->command, std::int32_t(command));
    // Release: whoever sees `execute` raised sees the operands too.
    std::atomic_ref(m_record->execute).store(1, std::memory_order_release);
}

void RecordLink::awaitNews()
{
    m_error = false;
    writeShared(m_record->state, std::int32_t(0));
    writeShared(m_record->duration, std::int64_t(0));
    awaitPosition();
}

void RecordLink::awaitPosition()
{
    writeShared(m_record->position, std::int64_t(Published::unknown));
}

Published RecordLink::published() const
{
    Published now;
    now.state = readShared(m_record->state);
    if (const std::int64_t position = readShared(m_record->position); position >= 0)
        now.position = position / nsPerMs;
    now.duration = std::max<std::int64_t>(readShared(m_record->duration), 0) / nsPerMs;
    now.error = m_error || readShared(m_record->error) != 0;
    return now;
}

QVariant RecordLink::property(const char *name) const
{
    const auto *const view = reinterpret_cast<const QObject *>(m_record->view);
    return view ? view->property(name) : QVariant();
}

void RecordLink::look()
{
    if (m_running && !isAlive()) {
        // Nobody will answer. What is raised must not be taken up by the next player.
        m_running = false;
        std::atomic_ref(m_record->execute).store(0, std::memory_order_relaxed);
    }
    std::optional<int> answered;
    // Acquire: once `execute` reads 0, the answer is there to be read.
    if (m_running && std::atomic_ref(m_record->execute).load(std::memory_order_acquire) == 0) {
        m_running = false;
        answered = m_record->command;
    }
    Q_EMIT looked(answered, readShared(m_record->done) != 0);
}

} // namespace MediaPlayer
