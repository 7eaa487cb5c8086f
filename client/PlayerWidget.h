#ifndef MEDIAPLAYER_PLAYERWIDGET_H
#define MEDIAPLAYER_PLAYERWIDGET_H

#include <MediaPlayer/Player.h>

#include <QtCore/QMargins>
#include <QtWidgets/QWidget>

namespace MediaPlayer
{

class WidgetPlace;

/// A widget that shows a Player: one of its own, which ends with it, or one that setPlayer() gives
/// it. It may be re-parented, floated and shown in another window at any time.
///
/// It takes no mouse, key or drop events from those who use it: they arrive here and go on to its
/// parent as with every widget. GUI thread.
class MEDIAPLAYER_CLIENT PlayerWidget : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(MediaPlayer::Player *player READ player WRITE setPlayer NOTIFY playerChanged)
    Q_PROPERTY(Qt::AspectRatioMode aspectRatioMode READ aspectRatioMode WRITE setAspectRatioMode
                   NOTIFY aspectRatioModeChanged)
    Q_PROPERTY(bool fullScreen READ isFullScreen WRITE setFullScreen NOTIFY fullScreenChanged)
    Q_PROPERTY(MediaPlayer::Player::WhenHidden whenHidden READ whenHidden WRITE setWhenHidden
                   NOTIFY whenHiddenChanged)
    Q_PROPERTY(QMargins cropMargins READ cropMargins WRITE setCropMargins NOTIFY cropMarginsChanged)

public:
    explicit PlayerWidget(QWidget *parent = nullptr);

    /// A player that was given goes on without a picture, or in the next widget that shows it.
    ~PlayerWidget() override;

    /// Never null: without one that was given the widget makes its own.
    Player *player() const;

    /// The player stays the caller's. Of several widgets that have one player, the one shows it
    /// that got it last; when that goes, the one before. Null, or the end of the player that was
    /// given: one of the widget's own again.
    void setPlayer(Player *player);

    Qt::AspectRatioMode aspectRatioMode() const; ///< at first Qt::KeepAspectRatio
    void setAspectRatioMode(Qt::AspectRatioMode mode);

    /// Whether the widget fills the screen, in a window of its own; leaving it brings the widget
    /// back to its parent. `isFullScreen()` is QWidget's.
    void setFullScreen(bool fullScreen);

    /// What becomes of the player when this widget is hidden or goes: at first Player::GoOn.
    Player::WhenHidden whenHidden() const;
    void setWhenHidden(Player::WhenHidden whenHidden);

    /// Pixels of the widget by which the picture is pushed past each edge; negative ones leave a
    /// border.
    QMargins cropMargins() const;
    void setCropMargins(const QMargins &margins);

    /// The picture's size in square pixels, or 320 x 240 while there is none.
    QSize sizeHint() const override;

Q_SIGNALS:
    void playerChanged();
    void aspectRatioModeChanged(Qt::AspectRatioMode mode);
    void fullScreenChanged(bool fullScreen);
    void whenHiddenChanged();
    void cropMarginsChanged();

protected:
    bool event(QEvent *event) override;

private:
    friend class WidgetPlace;
    const std::unique_ptr<WidgetPlace> d;
};

} // namespace MediaPlayer

#endif
