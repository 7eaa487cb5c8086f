#include "boundary/MediaPlayerControl.h"

#include "diagnostics/Trace.h"

#include <QtQuick/QQuickWindow>

MediaPlayerControl *Create(QWidget *parent, int left, int top, int right, int bottom)
{
    traceLine("Create MP");
    return new MediaPlayerControl(parent, left, top, right, bottom);
}

MediaPlayerControl *CreateQML(QQuickWindow *window, QQuickItem *parentItem, QObject *, int, int,
                              int, int)
{
    traceLine("CreateQML MP");
    return new MediaPlayerControl(window, parentItem);
}
