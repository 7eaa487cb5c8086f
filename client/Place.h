#ifndef MEDIAPLAYER_PLACE_H
#define MEDIAPLAYER_PLACE_H

#include <MediaPlayer/Player.h>

#include <QtCore/QPointer>

class BasicWidget;
class QQuickWindow;

namespace MediaPlayer
{

/// Where a Player shows its picture. A place has at most one player; a player may have many places,
/// of which the one shows it that is ready and got it last. GUI thread.
class MEDIAPLAYER_CLIENT Place
{
public:
    Place() = default;
    Place(const Place &) = delete;
    Place &operator=(const Place &) = delete;
    virtual ~Place();

    /// Whether a control can be made now.
    virtual bool isReady() const = 0;

    /// Whether somebody could see the picture.
    virtual bool isVisible() const = 0;

    /// A control in this place. `viewWindow` is the window that the plug-in's player ends with.
    virtual BasicWidget *makeControl(QQuickWindow *viewWindow) = 0;

    /// Parts from that control, so that the plug-in's player goes on without one.
    virtual void releaseControl(BasicWidget *control) = 0;

    /// The player's picture has another size or shape, see pictureSize().
    virtual void pictureChanged() = 0;

    /// What MediaPlayerFlip calls the way in which the plug-in is to turn the picture over.
    virtual int flips() const { return 0; }

    Player *player() const { return m_player; }

    Player::WhenHidden whenHidden = Player::GoOn;

protected:
    /// Parts from the player before, which parks. Null: no player.
    void setPlayer(Player *player);

    /// To be called whenever isReady(), isVisible() or flips() has changed.
    void changed();

    /// Of the picture in square pixels; empty while it is unknown.
    QSize pictureSize() const;

private:
    QPointer<Player> m_player;
};

} // namespace MediaPlayer

#endif
