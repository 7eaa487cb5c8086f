#include "PluginLibrary.h"

#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>

#include <atomic>

static const QLatin1String sceneFiles[] = {
    QLatin1String(MEDIAPLAYER_SCENE_DIR "/VideoObjectQt6.qml"),
    QLatin1String(MEDIAPLAYER_SCENE_DIR "/QMLView.qml")};

template <typename Symbol>
static QString resolve(QLibrary &library, const char *name, Symbol &symbol)
{
    symbol = reinterpret_cast<Symbol>(library.resolve(name));
    if (symbol)
        return {};
    return QStringLiteral("%1 has no symbol \"%2\": it is another library or version")
        .arg(library.fileName(), QLatin1String(name));
}

static QString missingSceneFile()
{
    for (const QLatin1String file : sceneFiles) {
        if (!QFileInfo(file).isReadable())
            return QStringLiteral("The scene file %1 is missing or unreadable. \"cmake --install\" "
                                  "or the package puts it there")
                .arg(file);
    }
    return {};
}

QString PluginLibrary::load(const QString &path)
{
    QLibrary library(path);
    if (!library.load())
        return library.errorString();
    const QString problems[] = {
        resolve(library, "Create", create), resolve(library, "CreateQML", createQml),
        resolve(library, "enableDebug", enableDebug),
        resolve(library, "enableWorkaround", enableWorkaround), missingSceneFile()};
    for (const QString &problem : problems) {
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

bool readSwitch(unsigned char *theSwitch)
{
    return std::atomic_ref(*theSwitch).load(std::memory_order_relaxed) != 0;
}

void writeSwitch(unsigned char *theSwitch, bool on)
{
    std::atomic_ref(*theSwitch).store(on ? 1 : 0, std::memory_order_relaxed);
}
