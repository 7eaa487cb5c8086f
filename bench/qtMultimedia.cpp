#include "Bench.h"
#include "Subject.h"

#include <QtCore/QUrl>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtMultimedia/QMediaPlayer>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>

namespace
{

class QtMultimedia : public Subject
{
public:
    explicit QtMultimedia(QQuickItem *place)
    {
        static QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQuick; import QtMultimedia\n"
                          "VideoOutput { anchors.fill: parent; fillMode: VideoOutput.Stretch }",
                          QUrl());
        auto *output = qobject_cast<QQuickItem *>(component.create());
        if (!output)
            fail(component.errorString());
        output->setParent(place);
        output->setParentItem(place);
        player.setVideoOutput(output);
        // Without a device the FFmpeg backend of 6.4 crashes in play() once it is given an output.
        if (!QMediaDevices::defaultAudioOutput().isNull())
            player.setAudioOutput(&audio);
    }

    void open(const QString &uri) override
    {
        player.setSource(QUrl(uri));
        player.pause();
    }

    void play() override { player.play(); }
    void pause() override { player.pause(); }

private:
    QAudioOutput audio;
    QMediaPlayer player;
};

} // namespace

std::unique_ptr<Subject> makeQtMultimedia(QQuickItem *place)
{
    return std::make_unique<QtMultimedia>(place);
}
