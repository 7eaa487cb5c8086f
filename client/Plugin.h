#ifndef MEDIAPLAYER_PLUGIN_H
#define MEDIAPLAYER_PLUGIN_H

#include <MediaPlayer/ClientExport.h>

#include <QtCore/QString>

// The media player plug-in, which is loaded when the first Player gets a source. A program calls
// nothing of this unless it keeps the plug-in in a place of its own or looks for a fault.
// All of it: GUI thread.

namespace MediaPlayer
{

/// The plug-in's file. Set it before the first Player gets a source; afterwards it changes nothing.
/// Not set, the plug-in is taken from the folder that it is installed in beside this library, and
/// else from the loader's search path.
MEDIAPLAYER_CLIENT void setPluginPath(const QString &path);
MEDIAPLAYER_CLIENT QString pluginPath();

/// Loads the plug-in now, which spares the first Player the time. Empty if it is there, else what
/// is wrong, in words for a user.
MEDIAPLAYER_CLIENT QString loadPlugin();

/// Whether the plug-in writes trace lines to standard output. Loads the plug-in; without it
/// setTracing() does nothing and isTracing() is false.
MEDIAPLAYER_CLIENT void setTracing(bool on);
MEDIAPLAYER_CLIENT bool isTracing();

} // namespace MediaPlayer

#endif
