#ifndef PLUGINLIBRARY_H
#define PLUGINLIBRARY_H

#include "MediaPlayerFactories.h"

#include <QtCore/QString>

/// The loaded plug-in: its two factories and its two switches. A host links nothing of it.
struct PluginLibrary {
    MediaPlayerCreate create = nullptr;
    MediaPlayerCreateQML createQml = nullptr;
    unsigned char *enableDebug = nullptr;
    unsigned char *enableWorkaround = nullptr;

    /// Loads the library at `path`, for good. Returns what is wrong, or an empty text.
    QString load(const QString &path);
};

/// The switches are read by threads of the plug-in at any time.
bool readSwitch(unsigned char *theSwitch);
void writeSwitch(unsigned char *theSwitch, bool on);

#endif
