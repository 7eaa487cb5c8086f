// The QML type Video, against the plug-in.

#include "clientFixture.h"

#include <MediaPlayer/Video.h>

#include <QtGui/QScreen>
#include <QtQuick/QQuickWindow>

class ClientVideoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void playsToItsEnd();
    void fills_data();
    void fills();
};

void ClientVideoTest::playsToItsEnd()
{
    Scene scene("Window { width: 320; height: 240; visible: true; color: 'magenta'\n"
                "Video { objectName: 'video'; anchors.fill: parent; autoPlay: true\n"
                "source: '" + media("quadrants.webm").toEncoded() + "' } }");
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
    QTest::newRow("on its side")
        << QByteArray("orientation: 90; fillMode: Video.Stretch") << QByteArray("BRWG") << all;
    QTest::newRow("fit on its side")
        << QByteArray("orientation: 270") << QByteArray("GWRB") << QRect(125, 0, 150, 200);
    QTest::newRow("mirrored")
        << QByteArray("mirrored: true; fillMode: Video.Stretch") << QByteArray("GRWB") << all;
    QTest::newRow("mirrored on its side")
        << QByteArray("mirrored: true; orientation: 90; fillMode: Video.Stretch")
        << QByteArray("RBGW") << all;
    QTest::newRow("margins") << QByteArray("cropMargins: [400, 0, 0, 0]; fillMode: Video.Stretch")
                             << QByteArray("GGWW") << all;
    QTest::newRow("border") << QByteArray("cropMargins: [-100, 0, 0, 0]; fillMode: Video.Stretch")
                            << QByteArray("MMMM") << QRect(0, 0, 90, 200);
}

void ClientVideoTest::fills()
{
    QFETCH(QByteArray, properties);
    QFETCH(QByteArray, seen);
    QFETCH(QRect, where);
    Scene scene("Window { width: 400; height: 200; visible: true; color: 'magenta'\n"
                "Video { objectName: 'video'; anchors.fill: parent\n"
                "source: '" + media("quadrants.webm").toEncoded() + "'\n" + properties + "} }");
    AWAIT_EQUAL(scene.find<MediaPlayer::Video>("video")->mediaStatus(), Player::LoadedMedia);
    AWAIT_EQUAL(picture(scene.window(), where), seen);
    if (qEnvironmentVariableIsSet("SHOTS"))
        scene.window()->screen()->grabWindow(scene.window()->winId()).save(
            qEnvironmentVariable("SHOTS") + u'/' + QString::fromLatin1(QTest::currentDataTag()) + QStringLiteral(".png"));
}

CLIENT_TEST_MAIN(ClientVideoTest)
#include "client_video_test.moc"
