#ifndef MEDIAPLAYER_PLUGINFUNCTIONS_H
#define MEDIAPLAYER_PLUGINFUNCTIONS_H

#include <MediaPlayer/ClientExport.h>
#include <MediaPlayer/MediaPlayerFactories.h>

#include <QtCore/QString>

namespace MediaPlayer
{

/// What is looked up in the loaded plug-in. All null if it cannot be used; `problem` says why.
struct PluginFunctions {
    MediaPlayerCreate create = nullptr;
    MediaPlayerCreateQML createQml = nullptr;
    unsigned char *enableDebug = nullptr;
    unsigned char *enableWorkaround = nullptr;
    QString problem;
};

/// Loads the plug-in at the first call. GUI thread.
MEDIAPLAYER_CLIENT const PluginFunctions &plugin();

/// What the program has left out and can no longer be set, in words for a developer; empty when
/// nothing is missing. A program that links this library has it set by itself.
MEDIAPLAYER_CLIENT QString missingPreparation();

} // namespace MediaPlayer

#endif
