// Players whose pictures come, go, and change places.

#include "clientFixture.h"

#include <MediaPlayer/PlayerWidget.h>
#include <MediaPlayer/Plugin.h>
#include <MediaPlayer/Video.h>

#include <QtCore/QLibrary>
#include <QtQuick/QQuickWindow>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QVBoxLayout>

using MediaPlayer::PlayerWidget;
using MediaPlayer::Video;

class ClientPlacesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { film.reset(); }
    void pages_data();
    void pages();
    void windows();
    void closedWindow();
    void endings_data();
    void endings();
    void lastPlaceShows();
    void hidden();
    void widgets();
    void widgetEndings_data();
    void widgetEndings();
    void cropped();
    void dock();
    void fullScreen();

private:
    std::unique_ptr<Player> film;
};

void ClientPlacesTest::init()
{
    film = std::make_unique<Player>();
    film->setSource(media("quadrants.webm"));
    film->setLoops(Player::Infinite);
    film->play();
}

void ClientPlacesTest::pages_data()
{
    QTest::addColumn<QByteArray>("pages");
    const QByteArray page = "Rectangle { color: 'magenta'\n"
                            "Video { objectName: 'v'; anchors.fill: parent; player: film } }\n";
    QTest::newRow("StackView") << "StackView { id: s; anchors.fill: parent; Component { id: p; "
            + page
            + "} initialItem: Item {} }\n"
              "function enter() { s.push(p, StackView.Immediate) }\n"
              "function leave() { s.pop(StackView.Immediate) }";
    QTest::newRow("Loader") << "Loader { id: l; anchors.fill: parent; active: false; "
                               "sourceComponent: "
            + page
            + "}\n"
              "function enter() { l.active = true }\n"
              "function leave() { l.active = false }";
    QTest::newRow("Repeater") << "Repeater { id: r; anchors.fill: parent; model: 0; Item { "
                                 "anchors.fill: parent\n"
            + QByteArray(page).replace("{ color", "{ anchors.fill: parent; color")
            + "} }\n"
              "function enter() { r.model = 1 }\n"
              "function leave() { r.model = 0 }";
    QTest::newRow("destroy()") << "property Item made; Component { id: p; " + page
            + "}\n"
              "function enter() { made = p.createObject(contentItem, {width: width, height: "
              "height}) }\n"
              "function leave() { made.destroy(); made = null }";
}

// The film plays on behind the page, and its place never goes back.
void ClientPlacesTest::pages()
{
    QFETCH(QByteArray, pages);
    Scene scene("import QtQuick.Controls\n"
                "Window { width: 320; height: 240; visible: true\n"
                    + pages + "}",
                film.get());
    scene.call("enter");
    AWAIT(plays(*film, 200));
    AWAIT_EQUAL(picture(scene.window()), "RGBW");
    const PlaceWatch watch(*film);
    for (int round = 0; round < 10; ++round) {
        scene.call("leave");
        AWAIT_EQUAL(int(film->record().attached), 0);
        AWAIT(!scene.item("v"));
        const qint64 left = film->position();
        AWAIT(film->position() > left);
        QVERIFY(film->isPlaying());
        scene.call("enter");
        AWAIT_EQUAL(int(film->record().attached), 1);
        AWAIT_EQUAL(picture(scene.window()), "RGBW");
    }
    QVERIFY2(!watch.wentBack(), qPrintable(QDebug::toString(watch.places)));
}

void ClientPlacesTest::windows()
{
    Scene scene("Window { width: 200; height: 150; visible: true; color: 'magenta'\n"
                "Item { id: here; anchors.fill: parent }\n"
                "Window { id: other; objectName: 'other'; x: 300; width: 200; height: 150; "
                "visible: true; color: 'magenta' }\n"
                "Video { id: v; parent: here; anchors.fill: parent; player: film }\n"
                "function go() { v.parent = other.contentItem } function back() { v.parent = here "
                "} }",
                film.get());
    AWAIT(plays(*film, 200));
    auto *const other = scene.find<QQuickWindow>("other");
    for (int round = 0; round < 2; ++round) {
        for (QWindow *target : {static_cast<QWindow *>(other), scene.window()}) {
            const qint64 keyFrame = film->position() / 1000 * 1000;
            AWAIT(plays(*film, keyFrame + 1500));
            const PlaceWatch watch(*film);
            const qint64 left = film->position();
            scene.call(target == other ? "go" : "back");
            AWAIT_EQUAL(picture(target), "RGBW");
            AWAIT(plays(*film, left + 200)); // not what was told before the film was begun anew
            QVERIFY2(watch.lowest() >= keyFrame + 1000, QByteArray::number(watch.lowest()));
        }
    }
}

void ClientPlacesTest::closedWindow()
{
    Scene scene("Window { width: 200; height: 150; visible: true; color: 'magenta'\n"
                "Video { anchors.fill: parent; player: film } }",
                film.get());
    AWAIT(plays(*film, 1000));
    film->pause();
    AWAIT_EQUAL(std::atomic_ref(film->record().state).load(), 3);
    const qint64 before = film->position();
    scene.window()->close();
    AWAIT(!scene.window()->isVisible());
    scene.window()->show();
    AWAIT_EQUAL(picture(scene.window()), "RGBW");
    film->play();
    AWAIT(plays(*film, before));
    QVERIFY(film->position() < before + 3000);
}

void ClientPlacesTest::endings_data()
{
    QTest::addColumn<QByteArray>("ending");
    for (const char *ending :
         {"the player, the item", "the item, the player", "the window, the player",
          "the player, the window", "the engine, the player", "the item with its own player",
          "the window with its own player"})
        QTest::newRow(ending) << QByteArray(ending);
}

// Whatever goes first, nothing is left and nothing crashes.
void ClientPlacesTest::endings()
{
    QFETCH(QByteArray, ending);
    const bool own = ending.contains("own");
    Scene scene("Window { width: 200; height: 150; visible: true\n"
                "Video { id: video; objectName: 'v'; anchors.fill: parent\n"
                    + QByteArray(own ? "source: 'quadrants.webm'; autoPlay: true" : "player: film")
                    + "} }",
                film.get());
    auto *video = scene.find<Video>("v");
    AWAIT(plays(*video->player(), 200));
    const QPointer<QObject> view = reinterpret_cast<QObject *>(video->player()->record().view);
    QVERIFY(view);
    for (const QByteArray &part : ending.split(',')) {
        if (part.contains("player") && !own)
            film.reset();
        else if (part.contains("item"))
            delete video;
        else if (part.contains("window"))
            scene.root.reset();
        else
            scene.engine.reset();
        QCoreApplication::processEvents();
        if (film && !own)
            QVERIFY(plays(*film, 200));
    }
    scene.root.reset();
    QVERIFY(!view);
}

void ClientPlacesTest::lastPlaceShows()
{
    Scene scene("Window { width: 400; height: 150; visible: true; color: 'magenta'\n"
                "Video { width: 200; height: 150; player: film }\n"
                "Loader { id: l; x: 200; sourceComponent: Video { width: 200; height: 150; "
                "player: film } }\n"
                "function drop() { l.active = false } }",
                film.get());
    const QRect left(0, 0, 200, 150);
    const QRect right(200, 0, 200, 150);
    AWAIT_EQUAL(picture(scene.window(), right), "RGBW");
    QCOMPARE(picture(scene.window(), left), "MMMM");
    scene.call("drop");
    AWAIT_EQUAL(picture(scene.window(), left), "RGBW");
    QCOMPARE(picture(scene.window(), right), "MMMM");
}

void ClientPlacesTest::hidden()
{
    Scene scene("Window { width: 200; height: 150; visible: true\n"
                "Video { objectName: 'v'; anchors.fill: parent; player: film; whenHidden: "
                "Player.Pause } }",
                film.get());
    AWAIT(plays(*film, 200));
    scene.find<Video>("v")->setVisible(false);
    AWAIT_EQUAL(std::atomic_ref(film->record().state).load(), 3);
    QCOMPARE(film->playbackState(), Player::PausedState);
    scene.find<Video>("v")->setVisible(true);
    AWAIT(plays(*film, 200));
    scene.find<Video>("v")->setWhenHidden(Player::GoOn);
    const qint64 before = film->position();
    scene.find<Video>("v")->setVisible(false);
    AWAIT(plays(*film, before + 500));
}

// From one widget to another, and each of them goes.
void ClientPlacesTest::widgets()
{
    QWidget window;
    window.resize(400, 150);
    auto *left = new PlayerWidget(&window);
    left->setGeometry(0, 0, 200, 150);
    left->setPlayer(film.get());
    window.show();
    AWAIT(plays(*film, 200));
    const PlaceWatch watch(*film);
    for (int round = 0; round < 3; ++round) {
        auto *right = new PlayerWidget(&window);
        right->setGeometry(200, 0, 200, 150);
        right->show();
        right->setPlayer(film.get());
        AWAIT_EQUAL(picture(window.windowHandle(), {205, 0, 190, 150}), "RGBW");
        QCOMPARE(picture(window.windowHandle(), {0, 0, 200, 150}), "KKKK");
        delete right;
        AWAIT_EQUAL(picture(window.windowHandle(), {5, 0, 190, 150}), "RGBW");
    }
    delete left;
    // The switch that lets a player outlive its widget is the process's, and not left on.
    QLibrary plugin(MediaPlayer::pluginPath());
    QCOMPARE(*reinterpret_cast<unsigned char *>(plugin.resolve("enableWorkaround")), 0);
    const qint64 before = film->position();
    AWAIT(plays(*film, before));
    QVERIFY(!watch.wentBack());
}

void ClientPlacesTest::widgetEndings_data()
{
    QTest::addColumn<QByteArray>("ending");
    for (const char *ending : {"the player, the widget", "the widget, the player",
                               "the window, the player", "the player, the window",
                               "the widget with its own player", "the window with its own player"})
        QTest::newRow(ending) << QByteArray(ending);
}

void ClientPlacesTest::widgetEndings()
{
    QFETCH(QByteArray, ending);
    const bool own = ending.contains("own");
    auto window = std::make_unique<QWidget>();
    window->resize(200, 150);
    auto *widget = new PlayerWidget(window.get());
    widget->resize(200, 150);
    if (!own)
        widget->setPlayer(film.get());
    widget->player()->setSource(media("quadrants.webm"));
    widget->player()->play();
    window->show();
    AWAIT(plays(*widget->player(), 200));
    const QPointer<QObject> view = reinterpret_cast<QObject *>(widget->player()->record().view);
    QVERIFY(view);
    for (const QByteArray &part : ending.split(',')) {
        if (part.contains("player") && !own)
            film.reset();
        else if (part.contains("widget"))
            delete widget;
        else
            window.reset();
        QCoreApplication::processEvents();
        if (film && !own)
            QVERIFY(plays(*film, 200));
    }
    QVERIFY(!view);
}

// 400 x 300 of which 200 are seen, or here 180.
void ClientPlacesTest::cropped()
{
    PlayerWidget widget;
    widget.resize(400, 200);
    widget.setAspectRatioMode(Qt::KeepAspectRatioByExpanding);
    widget.setCropMargins({0, -60, 0, -60});
    widget.setPlayer(film.get());
    widget.show();
    AWAIT_EQUAL(picture(widget.windowHandle(), {0, 12, 400, 40}), "RGRG");
}

void ClientPlacesTest::dock()
{
    QMainWindow window;
    window.resize(400, 300);
    QDockWidget dock;
    dock.setFeatures(QDockWidget::DockWidgetFloatable);
    PlayerWidget widget;
    widget.setMinimumSize(160, 120);
    widget.setPlayer(film.get());
    dock.setWidget(&widget);
    window.addDockWidget(Qt::LeftDockWidgetArea, &dock);
    window.show();
    AWAIT(plays(*film, 1500));
    for (const bool floating : {true, false}) {
        const qint64 keyFrame = film->position() / 1000 * 1000;
        const PlaceWatch watch(*film);
        dock.setFloating(floating);
        AWAIT_EQUAL(widget.window(), floating ? static_cast<QWidget *>(&dock) : &window);
        AWAIT(picture(widget.window()->windowHandle(),
                      QRect(widget.mapTo(widget.window(), QPoint()), widget.size()))
              == "RGBW");
        AWAIT(plays(*film, keyFrame + 1500));
        QVERIFY2(watch.lowest() >= keyFrame, QByteArray::number(watch.lowest()));
    }
    dock.setWidget(nullptr);
    widget.setParent(nullptr);
}

void ClientPlacesTest::fullScreen()
{
    QWidget window;
    PlayerWidget widget;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(&widget);
    window.resize(320, 240);
    widget.setPlayer(film.get());
    widget.setAspectRatioMode(Qt::IgnoreAspectRatio);
    window.show();
    AWAIT(plays(*film, 200));
    QSignalSpy changes(&widget, &PlayerWidget::fullScreenChanged);
    const QRect before = widget.geometry();
    for (const bool full : {true, false}) {
        widget.setFullScreen(full);
        AWAIT_EQUAL(widget.isFullScreen(), full);
        const QWidget *const top = widget.window();
        AWAIT(picture(top->windowHandle(), QRect(widget.mapTo(top, QPoint()), widget.size()))
              == "RGBW");
    }
    QCOMPARE(changes.size(), 2);
    AWAIT_EQUAL(widget.geometry(), before);
    widget.setParent(nullptr);
}

CLIENT_TEST_MAIN(ClientPlacesTest)
#include "client_places_test.moc"
