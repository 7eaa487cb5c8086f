#include "HostProgram.h"
#include "Look.h"
#include "QuickStage.h"

#include <QtCore/QMetaEnum>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtQml/QQmlApplicationEngine>
#include <QtQml/QQmlProperty>
#include <QtQuick/QQuickImageProvider>
#include <QtQuick/QQuickWindow>
#include <QtQuickControls2/QQuickStyle>

namespace
{

/// "image://host/play" is a drawing of look::image(); "image://host/cover/3" the cover, whose
/// number changes with it.
class Images : public QQuickImageProvider
{
public:
    explicit Images(const Session &theSession)
        : QQuickImageProvider(QQuickImageProvider::Image), session(theSession)
    {
    }

    QImage requestImage(const QString &id, QSize *size, const QSize &requested) override
    {
        QImage image;
        if (id.startsWith(QLatin1String("cover/")))
            image = session.cover();
        if (image.isNull()) // also a cover that is gone already
            image = look::image(id, requested.isEmpty() ? 96 : requested.height());
        *size = image.size();
        return image;
    }

private:
    const Session &session;
};

// The style keeps to colours of its own unless the window names others.
void setPalette(QQuickWindow *window)
{
    const QPalette palette = look::palette();
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        QString name =
            QString::fromLatin1(QMetaEnum::fromType<QPalette::ColorRole>().valueToKey(role));
        name[0] = name[0].toLower();
        QQmlProperty::write(window, QStringLiteral("palette.") + name,
                            palette.color(QPalette::ColorRole(role)));
        QQmlProperty::write(window, QStringLiteral("palette.disabled.") + name,
                            palette.color(QPalette::Disabled, QPalette::ColorRole(role)));
    }
}

/// The window, whose interface is in Main.qml.
class QuickWindow : public HostWindow
{
public:
    explicit QuickWindow(Session &session);

    QImage picture() override { return window->grabWindow(); }

private:
    QQmlApplicationEngine engine;
    QQuickWindow *window = nullptr; // the engine's
};

QuickWindow::QuickWindow(Session &session)
{
    engine.addImageProvider(QStringLiteral("host"), new Images(session));
    engine.setInitialProperties({{QStringLiteral("session"), QVariant::fromValue(&session)}});
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

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Fusion"));
    HostProgram program(QStringLiteral("Media player in a Qt Quick window."));
    return program.run(
        [](const PluginLibrary &plugin) { return std::make_unique<QuickStage>(plugin); },
        [](Session &session) { return std::make_unique<QuickWindow>(session); });
}
