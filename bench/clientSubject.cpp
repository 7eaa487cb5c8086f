#include "Bench.h"
#include "Subject.h"

#include <MediaPlayer/Player.h>
#include <MediaPlayer/Plugin.h>
#include <MediaPlayer/Video.h>

namespace
{

class ClientSubject : public Subject
{
public:
    explicit ClientSubject(QQuickItem *place) : video(place)
    {
        video.setSize(place->size());
        video.setFillMode(MediaPlayer::Video::Stretch);
    }

    void open(const QString &uri) override { video.setSource(QUrl(uri)); }
    void play() override { video.player()->play(); }
    void pause() override { video.player()->pause(); }

private:
    MediaPlayer::Video video;
};

} // namespace

std::unique_ptr<Subject> makeClient(QQuickItem *place, const QString &library)
{
    MediaPlayer::setPluginPath(library);
    return std::make_unique<ClientSubject>(place);
}
