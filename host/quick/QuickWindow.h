#ifndef QUICKWINDOW_H
#define QUICKWINDOW_H

#include "HostProgram.h"

#include <QtQml/QQmlApplicationEngine>

class QQuickWindow;

/// The Qt Quick host's window, whose interface is in Main.qml.
class QuickWindow : public HostWindow
{
public:
    explicit QuickWindow(Session &session);

    QImage picture() override;

private:
    QQmlApplicationEngine engine;
    QQuickWindow *window = nullptr; // the engine's
};

#endif
