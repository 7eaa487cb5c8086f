#include "HostProgram.h"
#include "QuickPlaces.h"

#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGRendererInterface>
#include <QtQuickControls2/QQuickStyle>

int main(int argc, char **argv)
{
    // Both before the first window: the video is drawn with OpenGL, and only windows that share
    // their contexts can hand a picture from one to another.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Fusion"));

    HostProgram program(QStringLiteral("Media player in a Qt Quick window."));
    if (!program.prepare())
        return program.status();
    QuickPlaces places(program.library());

    // The engine, and the players' pictures with it, goes before the session and its records.
    QQmlApplicationEngine engine;
    engine.setInitialProperties(
        {{QStringLiteral("session"), QVariant::fromValue(&program.session())},
         {QStringLiteral("places"), QVariant::fromValue(&places)}});
    engine.load(QUrl(QStringLiteral("qrc:/host/Main.qml")));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window)
        return 2; // the engine has said why
    program.begin([window](QSize size) { window->resize(size); },
                  [window] { return window->grabWindow(); });
    QCoreApplication::exec();
    return program.status();
}
