#include "pluginSubject.h"

#include "Bench.h"
#include "MediaPlayerFactories.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <dlfcn.h>

#include <atomic>

static MediaPlayerCreateQML createQml = nullptr;

void PluginSubject::loadLibrary(const QString &path)
{
    void *library = dlopen(path.toLocal8Bit().constData(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        fail(QString::fromLocal8Bit(dlerror()));
    createQml = reinterpret_cast<MediaPlayerCreateQML>(dlsym(library, "CreateQML"));
    if (!createQml)
        fail(QStringLiteral("the library exports no CreateQML"));
}

PluginSubject::PluginSubject(QQuickItem *host) : place(host)
{
    record.volume = 1.0;
    record.opacity = 1.0;
}

// The player ends with its video object, and that with the item it is in.
PluginSubject::~PluginSubject()
{
    delete place;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void PluginSubject::writeFileName(const QString &uri)
{
    qstrncpy(record.fileName, uri.toUtf8().constData(), sizeof record.fileName);
}

void PluginSubject::createControl()
{
    control = createQml(place->window(), place, nullptr, 0, 0, 0, 0);
    char key[] = "RegisterParameter";
    control->SysNativeControlSetSettings(key, &record);
    show(true);
}

void PluginSubject::destroyControl()
{
    show(false);
    control->saveObject();
    control->SysNativeControlDestroy();
}

void PluginSubject::open(const QString &uri)
{
    writeFileName(uri);
    if (!record.view) {
        createControl();
        return;
    }
    record.command = MediaPlayerCommandLoad;
    // The view is a QObject first of all; its own class is none of a host's business.
    QMetaObject::invokeMethod(reinterpret_cast<QObject *>(record.view), "updateValues",
                              Qt::QueuedConnection);
}

void PluginSubject::playState(int state)
{
    record.playState = state;
    run(MediaPlayerCommandPlayState);
}

void PluginSubject::raise(int command)
{
    record.command = command;
    std::atomic_ref(record.execute).store(1, std::memory_order_release);
}

bool PluginSubject::isAnswered() const
{
    auto &execute = const_cast<std::int8_t &>(record.execute);
    return std::atomic_ref(execute).load(std::memory_order_acquire) == 0;
}

void PluginSubject::run(int command)
{
    raise(command);
    await("an answer", [this] { return isAnswered(); });
}

bool PluginSubject::isAttached() const
{
    auto &attached = const_cast<std::int8_t &>(record.attached);
    return std::atomic_ref(attached).load(std::memory_order_relaxed) != 0;
}
