// The QML type Video, against the plug-in.

#include "clientFixture.h"

#include <MediaPlayer/Video.h>

#include <QtQuick/QQuickWindow>

class ClientVideoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void playsToItsEnd();
    void withoutSize_data();
    void withoutSize();
    void fills_data();
    void fills();
    void movesNothing();
    void madeInCode();
};

void ClientVideoTest::playsToItsEnd()
{
    Scene scene("Window { width: 320; height: 240; visible: true; color: 'magenta'\n"
                "Video { objectName: 'video'; anchors.fill: parent; autoPlay: true\n"
                "source: 'quadrants.webm' } }");
    auto *video = scene.find<MediaPlayer::Video>("video");
    QSignalSpy playing(video, &MediaPlayer::Video::playing);
    QSignalSpy stopped(video, &MediaPlayer::Video::stopped);
    QCOMPARE(video->mediaStatus(), Player::LoadingMedia);
    AWAIT(plays(*video->player(), 300));
    QCOMPARE(playing.size(), 1);
    QCOMPARE(video->mediaStatus(), Player::BufferedMedia);
    QCOMPARE(video->duration() / 1000, 10);
    AWAIT_EQUAL(picture(scene.window()), "RGBW");

    video->seek(9500);
    QCOMPARE(video->position(), 9500);
    AWAIT_EQUAL(video->playbackState(), Player::StoppedState);
    QCOMPARE(video->mediaStatus(), Player::EndOfMedia);
    QCOMPARE(video->position(), video->duration());
    QCOMPARE(stopped.size(), 1);

    video->play();
    QVERIFY(video->position() < 500);
    AWAIT(plays(*video->player(), 300));
    QVERIFY(video->position() < 5000);
}

void ClientVideoTest::withoutSize_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::newRow("sound") << QByteArray("tone.flac");
    QTest::newRow("film") << QByteArray("quadrants.webm");
}

// It is loaded and played all the same, and an item takes the size of its picture.
void ClientVideoTest::withoutSize()
{
    QFETCH(QByteArray, source);
    Scene scene("Window { width: 200; height: 150; visible: true\n"
                "Video { objectName: 'video'; autoPlay: true; source: '"
                + source + "' } }");
    auto *video = scene.find<MediaPlayer::Video>("video");
    AWAIT(plays(*video->player(), 200));
    if (source == "tone.flac")
        return;
    AWAIT_EQUAL(video->size(), QSizeF(160, 120));
    AWAIT_EQUAL(picture(scene.window(), {0, 0, 160, 120}), "RGBW");
}

void ClientVideoTest::fills_data()
{
    QTest::addColumn<QByteArray>("properties");
    QTest::addColumn<QByteArray>("seen");
    QTest::addColumn<QRect>("where");
    const QRect all(0, 0, 400, 200);
    QTest::newRow("stretch") << QByteArray("fillMode: Video.Stretch") << QByteArray("RGBW") << all;
    // 4:3 in 400 x 200 leaves bars of 66 pixels on the left and on the right.
    QTest::newRow("fit") << QByteArray() << QByteArray("RGBW") << QRect(67, 0, 266, 200);
    QTest::newRow("fit leaves bars") << QByteArray() << QByteArray("MMMM") << QRect(0, 0, 60, 200);
    QTest::newRow("on its side") << QByteArray("orientation: 90; fillMode: Video.Stretch")
                                 << QByteArray("BRWG") << all;
    QTest::newRow("fit on its side")
        << QByteArray("orientation: 270") << QByteArray("GWRB") << QRect(125, 0, 150, 200);
    QTest::newRow("mirrored") << QByteArray("mirrored: true; fillMode: Video.Stretch")
                              << QByteArray("GRWB") << all;
    QTest::newRow("mirrored on its side")
        << QByteArray("mirrored: true; orientation: 90; fillMode: Video.Stretch")
        << QByteArray("RBGW") << all;
    QTest::newRow("margins") << QByteArray("cropMargins: [400, 0, 0, 0]; fillMode: Video.Stretch")
                             << QByteArray("GGWW") << all;
    QTest::newRow("border") << QByteArray("cropMargins: [-100, 0, 0, 0]; fillMode: Video.Stretch")
                            << QByteArray("MMMM") << QRect(0, 0, 90, 200);
    // 400 x 300 of which 200 are seen, or here 180.
    QTest::newRow("crop") << QByteArray(
        "cropMargins: [0, -60, 0, -60]; fillMode: Video.PreserveAspectCrop")
                          << QByteArray("RGRG") << QRect(0, 12, 400, 40);
    QTest::newRow("crop stays inside")
        << QByteArray("anchors.margins: 50; fillMode: Video.PreserveAspectCrop")
        << QByteArray("MMMM") << QRect(0, 0, 400, 48);
}

void ClientVideoTest::fills()
{
    QFETCH(QByteArray, properties);
    QFETCH(QByteArray, seen);
    QFETCH(QRect, where);
    Scene scene("Window { width: 400; height: 200; visible: true; color: 'magenta'\n"
                "Video { objectName: 'video'; anchors.fill: parent\n"
                "source: 'quadrants.webm'\n"
                + properties + "} }");
    AWAIT_EQUAL(scene.find<MediaPlayer::Video>("video")->mediaStatus(), Player::LoadedMedia);
    AWAIT_EQUAL(picture(scene.window(), where), seen);
}

// As a C++ program makes one: in a window from the start.
void ClientVideoTest::madeInCode()
{
    Scene scene("Window { width: 320; height: 240; visible: true; color: 'magenta' }");
    MediaPlayer::Video video(qobject_cast<QQuickWindow *>(scene.window())->contentItem());
    video.setSize({320, 240});
    video.setFillMode(MediaPlayer::Video::Stretch);
    video.setSource(media("quadrants.webm"));
    AWAIT_EQUAL(picture(scene.window()), "RGBW");
}

// The plug-in moves items that it is given.
void ClientVideoTest::movesNothing()
{
    Scene scene("Window { width: 400; height: 200; visible: true; color: 'magenta'\n"
                "Item { objectName: 'box'; x: 40; y: 30; width: 300; height: 160\n"
                "Video { objectName: 'video'; x: 20; y: 10; width: 200; height: 150\n"
                "source: 'quadrants.webm' } } }");
    AWAIT_EQUAL(picture(scene.window(), {60, 40, 200, 150}), "RGBW");
    QCOMPARE(scene.item("box")->position(), QPointF(40, 30));
    QCOMPARE(scene.item("video")->position(), QPointF(20, 10));
}

CLIENT_TEST_MAIN(ClientVideoTest)
#include "client_video_test.moc"
