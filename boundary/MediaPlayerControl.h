#ifndef MEDIAPLAYERCONTROL_H
#define MEDIAPLAYERCONTROL_H

#include "boundary/BasicWidget.h"

#include <QtCore/QPointer>
#include <QtGui/QWindow>
#include <QtQuick/QQuickItem>
#include <QtQuickWidgets/QQuickWidget>

class MediaPlayerView;
struct MediaPlayerParams;
class QQuickWindow;

/// [gui] One native control. It is thin: it knows the host's window and item, and leads the host's
/// record to a MediaPlayerView, which does the work and may outlive it.
class MediaPlayerControl : public BasicWidget
{
    Q_OBJECT

public:
    /// For a widget host: builds a quick widget inside `parent` at the given corners.
    MediaPlayerControl(QWidget *parent, int left, int top, int right, int bottom);

    /// For a Qt Quick host.
    MediaPlayerControl(QQuickWindow *hostWindow, QQuickItem *hostItem);

    ~MediaPlayerControl() override;

    int SysNativeControlShow(int show) override;
    int SysNativeControlDestroy() override;
    int SysNativeControlMove(int left, int top, int right, int bottom) override;
    int SysNativeControlSetSettings(char *key, void *value) override;
    bool saveObject() override;

public Q_SLOTS:
    /// The view announced its end: takes it down, and goes too.
    void onDestruct();

public:
    QPointer<MediaPlayerView> view;
    QPointer<QQuickItem> parentItem;
    QPointer<QWindow> window;
    QPointer<QQuickWidget> quickWidget; ///< null in a Qt Quick host

private:
    // Each gives the control the record's view; false when there is none, or no control any more.
    bool takeOverView(MediaPlayerParams *hostRecord);
    bool makeView(MediaPlayerParams *hostRecord);
};

extern "C" {
[[gnu::visibility("default")]] MediaPlayerControl *Create(QWidget *parent, int left, int top,
                                                          int right, int bottom);
[[gnu::visibility("default")]] MediaPlayerControl *
CreateQML(QQuickWindow *window, QQuickItem *parentItem, QObject *context, int, int, int, int);
}

#endif
