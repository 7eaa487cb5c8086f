#ifndef FILMAREA_H
#define FILMAREA_H

#include "Session.h"

#include <MediaPlayer/PlayerWidget.h>

/// The picture, and over it what there is to tell: a hint, a failure, a wait, a notice, or what a
/// sound is called and its cover.
class FilmArea : public QWidget
{
    Q_OBJECT

public:
    explicit FilmArea(Session &session);

    MediaPlayer::PlayerWidget *film() { return picture; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    Session &session;
    MediaPlayer::PlayerWidget *picture;
    QWidget *words;
};

#endif
