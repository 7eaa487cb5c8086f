#ifndef SCENE_H
#define SCENE_H

class QQmlEngine;
class QQuickItem;
class QString;

/// The path of a scene file. The folder is fixed: hosts install the scene beside the library.
QString sceneFile(const char *name);

/// The engine of all views of the process. Made on first use and deleted, together with the views
/// that are still alive, when the application object goes.
QQmlEngine *sharedEngine();

/// The item below `root` that the video sink draws into, or null.
QQuickItem *findVideoItem(const QQuickItem *root);

#endif
