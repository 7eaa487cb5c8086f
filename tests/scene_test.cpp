#include "tests/fixture.h"

// Runs where the scene's folder is an empty one of its own, see CMakeLists.txt; SCENE names what to
// put there. The engine remembers files, so each case is a process.

namespace
{

const QHash<QByteArray, QByteArray> scenes = {
    {"missing", ""},
    {"no-item", "import QtQml\nQtObject { }\n"},
    {"broken", "import QtQuick\nItem {\n"},
    {"bare",
     "import QtQuick\nItem { signal videoSurfaceReadyChanged(bool ready); signal destruct }"},
};

} // namespace

class SceneTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundPlaysAndNothingIsDrawn_data() { addKinds(); }
    void soundPlaysAndNothingIsDrawn()
    {
        const QByteArray scene = qgetenv("SCENE");
        QVERIFY(scenes.contains(scene));
        for (const char *name : {"VideoObjectQt6.qml", "QMLView.qml"}) {
            QFile file(QStringLiteral(MEDIAPLAYER_SCENE_DIR "/") + QLatin1String(name));
            // A machine's own scene is never overwritten.
            if (scene != "missing" && !file.exists())
                QVERIFY(file.open(QIODevice::WriteOnly) && file.write(scenes[scene]) > 0);
        }

        QFETCH(Host::Kind, kind);
        Host host(kind);
        host.open(media("tone.flac"));
        QCOMPARE(host.view()->videoObject.isNull(), scene != "bare");
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        for (const int command :
             {MediaPlayerCommandVolume, MediaPlayerCommandMute, MediaPlayerCommandSeek,
              MediaPlayerCommandTransform, MediaPlayerCommandCrop, MediaPlayerCommandOpacity,
              MediaPlayerCommandKeepAspectRatio})
            QCOMPARE(host.run(command), complete);
        QCOMPARE(host.picture(), "MMMM");
        QCOMPARE(host.load(media("tone.flac")), complete);
        QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        AWAIT(host.position() > 0);
        host.control->SysNativeControlShow(0);
        AWAIT_EQUAL(int(loadRelaxed(host.record.attached)), 0);
    }
};

PLAYER_TEST_MAIN(SceneTest)
#include "scene_test.moc"
