#include "QuickWindow.h"

#include "ImageProvider.h"
#include "mediaFiles.h"

#include <QtCore/QCoreApplication>
#include <QtQuick/QQuickWindow>

QuickWindow::QuickWindow(Session &session)
{
    engine.addImageProvider(QStringLiteral("host"), new ImageProvider(session));
    // Where a build has the module MediaPlayer; an installed one is found without.
    engine.addImportPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../qml"));
    engine.setInitialProperties(
        {{QStringLiteral("session"), QVariant::fromValue(&session)},
         {QStringLiteral("fileFilters"), dialogFilters()},
         {QStringLiteral("warning"), look::warning}});
    engine.load(QUrl(QStringLiteral("qrc:/host/Main.qml")));
    window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window)
        qFatal("The window could not be made"); // the engine has said why
    session.show(window);
}

QImage QuickWindow::picture()
{
    return window->grabWindow();
}
