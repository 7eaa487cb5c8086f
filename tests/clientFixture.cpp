#include "clientFixture.h"

#include <QtCore/QDir>
#include <QtGui/QScreen>
#include <QtQml/QQmlContext>
#include <QtQuick/QQuickWindow>
#include <QtWidgets/QApplication>

#include <functional>

QUrl media(const char *name)
{
    const QString folder = qEnvironmentVariable("MEDIA_DIR");
    if (folder.isEmpty())
        qFatal("MEDIA_DIR is not set: run the tests through ./test");
    return QUrl::fromLocalFile(QDir(folder).filePath(QLatin1String(name)));
}

static char letterOf(QRgb pixel)
{
    const auto bit = [](int level) { return level > 200 ? 1 : level < 60 ? 0 : 8; };
    const int bits = bit(qRed(pixel)) + 2 * bit(qGreen(pixel)) + 4 * bit(qBlue(pixel));
    return bits < 8 ? "KRGYBMCW"[bits] : '?';
}

QByteArray picture(QWindow *window, QRect part)
{
    const QImage image = window->screen()->grabWindow(window->winId()).toImage();
    if (part.isNull())
        part = image.rect();
    QByteArray letters;
    for (const int y : {1, 3}) {
        for (const int x : {1, 3})
            letters += letterOf(
                image.pixel(part.x() + x * part.width() / 4, part.y() + y * part.height() / 4));
    }
    return letters;
}

Scene::Scene(const QByteArray &qml, QObject *film) : engine(std::make_unique<QQmlEngine>())
{
    engine->addImportPath(QStringLiteral(QML_MODULES));
    engine->rootContext()->setContextProperty(QStringLiteral("film"), film);
    QQmlComponent component(engine.get());
    component.setData("import QtQuick; import QtQuick.Window; import MediaPlayer\n" + qml, QUrl());
    root.reset(component.create());
    if (!root)
        qFatal("%s", qPrintable(component.errorString()));
}

Scene::~Scene()
{
    root.reset();
    engine.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

static QQuickItem *itemBelow(QQuickItem *item, const QString &name)
{
    if (item->objectName() == name)
        return item;
    for (QQuickItem *child : item->childItems()) {
        if (QQuickItem *found = itemBelow(child, name))
            return found;
    }
    return nullptr;
}

QQuickItem *Scene::item(const char *name) const
{
    return itemBelow(qobject_cast<QQuickWindow *>(root.get())->contentItem(), QLatin1String(name));
}

PlaceWatch::PlaceWatch(Player &player)
{
    connect(&player, &Player::positionChanged, this,
            [this](qint64 place) { places.append(place); });
}

Commands::Commands(Player &player)
{
    connect(&player, &Player::commandAnswered, this,
            [this](int command) { codes.append(command); });
}

int runClientTest(int argc, char **argv, const std::function<int(int, char **)> &test)
{
    qputenv("G_DEBUG", "fatal-criticals");
    QApplication application(argc, argv);
    return test(argc, argv);
}
