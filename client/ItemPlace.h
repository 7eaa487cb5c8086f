#ifndef MEDIAPLAYER_ITEMPLACE_H
#define MEDIAPLAYER_ITEMPLACE_H

#include "Place.h"

#include <MediaPlayer/Video.h>

#include <QtCore/QMargins>

namespace MediaPlayer
{

/// The place of a Video. Inside the item lie two of our own: the frame, which cuts off what
/// overhangs and which the plug-in may move to the origin, where it is already; and the picture,
/// which is shaped and turned. Neither has a QObject parent: what QML destroys, it tells every
/// QObject below first, and the plug-in's player would take that for its own end.
class ItemPlace : public Place
{
public:
    explicit ItemPlace(Video *video);
    ~ItemPlace() override;

    bool isReady() const override { return ready; }
    bool isVisible() const override { return q->window() && q->isVisible(); }
    BasicWidget *makeControl(QQuickWindow *viewWindow) override;
    void releaseControl(BasicWidget *control) override;
    void pictureChanged() override;
    int flips() const override;

    bool hasOwnPlayer() const { return own != nullptr; }
    void show(Player *player); ///< null: one of its own
    using Place::changed;

    Video *const q;
    bool ready = false;
    Video::FillMode mode = Video::PreserveAspectFit;
    int orientation = 0;
    bool mirrored = false;
    QMargins margins;

private:
    std::unique_ptr<Player> own;
    const std::unique_ptr<QQuickItem> frame;
    const std::unique_ptr<QQuickItem> picture;
};

} // namespace MediaPlayer

#endif
