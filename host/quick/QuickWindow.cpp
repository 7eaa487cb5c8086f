#include "QuickWindow.h"

#include "ImageProvider.h"
#include "mediaFiles.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QScreen>
#include <QtQml/QQmlProperty>
#include <QtQuick/QQuickWindow>

// The style keeps to colours of its own unless the window names others.
static void setPalette(QQuickWindow *window)
{
    const QPalette palette = look::palette();
    const std::pair<const char *, QPalette::ColorRole> roles[] = {
        {"window", QPalette::Window}, {"windowText", QPalette::WindowText},
        {"base", QPalette::Base}, {"text", QPalette::Text},
        {"alternateBase", QPalette::AlternateBase}, {"button", QPalette::Button},
        {"buttonText", QPalette::ButtonText}, {"highlight", QPalette::Highlight},
        {"highlightedText", QPalette::HighlightedText},
        {"toolTipBase", QPalette::ToolTipBase}, {"toolTipText", QPalette::ToolTipText}};
    for (const auto &[name, role] : roles)
        QQmlProperty::write(window, QStringLiteral("palette.") + QLatin1String(name),
                            palette.color(role));
    for (const char *name : {"windowText", "text", "buttonText"})
        QQmlProperty::write(window, QStringLiteral("palette.disabled.") + QLatin1String(name),
                            palette.color(QPalette::Disabled, QPalette::Text));
}

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
    setPalette(window);
    window->resize(session.firstSize(*window->screen()));
    session.memory().isMaximized() ? window->showMaximized() : window->show();
    session.watch(window);
    QObject::connect(&session, &Session::shownChanged, window, [this, &session] {
        window->setWindowStates(
            window->windowStates().setFlag(Qt::WindowFullScreen, session.isFullScreen()));
    });
}

QImage QuickWindow::picture()
{
    return window->grabWindow();
}
