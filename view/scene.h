#ifndef SCENE_H
#define SCENE_H

class QQmlEngine;
class QString;

/// The path of a scene file. The folder is fixed: hosts install the scene beside the library.
QString sceneFile(const char *name);

/// The engine of all views of the process. Made on first use and deleted, together with the views
/// that are still alive, when the application object goes.
QQmlEngine *sharedEngine();

#endif
