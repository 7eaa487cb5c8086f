#include "HostProgram.h"
#include "MainWindow.h"

#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGRendererInterface>
#include <QtWidgets/QApplication>

int main(int argc, char **argv)
{
    // Both before the first window: the video is drawn with OpenGL, and only windows that share
    // their contexts can hand a picture from one to another.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    QApplication app(argc, argv);

    HostProgram program(QStringLiteral("Media player in a window of Qt widgets."));
    if (!program.prepare())
        return program.status();
    {
        MainWindow window(program.session(), program.library());
        window.show();
        program.begin([&window](QSize size) { window.resize(size); },
                      [&window] { return window.picture(); });
        app.exec();
    }
    // The players' deletion was put off to a turn of the event loop that no longer comes.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return program.status();
}
