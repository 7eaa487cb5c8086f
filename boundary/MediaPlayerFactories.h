#ifndef MEDIAPLAYERFACTORIES_H
#define MEDIAPLAYERFACTORIES_H

class BasicWidget;
class QObject;
class QQuickItem;
class QQuickWindow;
class QWidget;

/// Types of the two functions that a host looks up in the loaded library, by the names "Create"
/// and "CreateQML". Both are called on the GUI thread, after the application object exists, and
/// return a new control that belongs to the host; it also dies with its first argument.
///
/// The library stays mapped for the life of the process, also after dlclose().

/// "Create", for a host built of widgets: the control is a child widget of `parent` with the
/// corners (left, top) and (right, bottom), both inclusive, in the parent's pixels.
using MediaPlayerCreate = BasicWidget *(*)(QWidget *parent, int left, int top, int right,
                                           int bottom);

/// "CreateQML", for a Qt Quick host: the picture fills `parentItem`, an item in `window`. The
/// other arguments are not used; pass null and zeros.
using MediaPlayerCreateQML = BasicWidget *(*)(QQuickWindow *window, QQuickItem *parentItem,
                                              QObject *context, int left, int top, int right,
                                              int bottom);

#endif
