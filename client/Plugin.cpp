#include <MediaPlayer/Plugin.h>

#include "PluginFunctions.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGRendererInterface>

#include <dlfcn.h>

#include <atomic>

namespace MediaPlayer
{
namespace
{

constexpr QLatin1String pluginFile("libMediaPlayer.so");

QString &chosenPath()
{
    static QString path;
    return path;
}

/// Where the plug-in lies beside this library: installed, and in a build folder.
QString defaultPath()
{
    Dl_info self {};
    if (dladdr(reinterpret_cast<const void *>(&defaultPath), &self) != 0 && self.dli_fname) {
        const QDir here = QFileInfo(QFile::decodeName(self.dli_fname)).absoluteDir();
        for (const char *folder : {"mediaplayer/", "../"}) {
            const QString file = here.filePath(QLatin1String(folder) + pluginFile);
            if (QFileInfo::exists(file))
                return QDir::cleanPath(file);
        }
    }
    return pluginFile;
}

template <typename Symbol>
bool find(QLibrary &library, const char *name, Symbol &symbol)
{
    symbol = reinterpret_cast<Symbol>(library.resolve(name));
    return symbol != nullptr;
}

PluginFunctions load()
{
    PluginFunctions found;
    QLibrary library(pluginPath());
    if (!library.load())
        return {.problem = QCoreApplication::translate(
                    "MediaPlayer::Player", "The media player plug-in cannot be loaded: %1")
                               .arg(library.errorString())};
    if (find(library, "Create", found.create) && find(library, "CreateQML", found.createQml)
        && find(library, "enableDebug", found.enableDebug)
        && find(library, "enableWorkaround", found.enableWorkaround))
        return found;
    return {.problem = QCoreApplication::translate("MediaPlayer::Player",
                                                   "%1 is not the media player plug-in")
                           .arg(library.fileName())};
}

bool loadedLate = false;

// Runs inside the constructor of the application object, where both can still be set. A QML module
// that is loaded later comes here at once, and too late.
void prepareApplication()
{
    loadedLate = !QCoreApplication::startingUp();
    if (loadedLate)
        return;
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(prepareApplication)

QString missingPreparation()
{
    const auto api = QQuickWindow::graphicsApi();
    if (api != QSGRendererInterface::OpenGL && api != QSGRendererInterface::Unknown)
        return QStringLiteral(
            "films need Qt Quick to draw with OpenGL: link MediaPlayer::Quick, or call "
            "QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL) before the first window");
    if (loadedLate && !QCoreApplication::testAttribute(Qt::AA_ShareOpenGLContexts))
        return QStringLiteral(
            "a film that moves to another window stays black there: link MediaPlayer::Quick, or "
            "set Qt::AA_ShareOpenGLContexts before the application object");
    return {};
}

const PluginFunctions &plugin()
{
    static const PluginFunctions functions = load();
    return functions;
}

void setPluginPath(const QString &path)
{
    chosenPath() = path;
}

QString pluginPath()
{
    return chosenPath().isEmpty() ? defaultPath() : chosenPath();
}

QString loadPlugin()
{
    return plugin().problem;
}

void setTracing(bool on)
{
    if (unsigned char *const traces = plugin().enableDebug)
        std::atomic_ref(*traces).store(on ? 1 : 0, std::memory_order_relaxed);
}

bool isTracing()
{
    unsigned char *const traces = plugin().enableDebug;
    return traces && std::atomic_ref(*traces).load(std::memory_order_relaxed) != 0;
}

} // namespace MediaPlayer
