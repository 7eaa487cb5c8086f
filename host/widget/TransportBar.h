#ifndef TRANSPORTBAR_H
#define TRANSPORTBAR_H

#include "Session.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <QtWidgets/QWidget>

class QAction;

/// Buttons, the seek slider with its times, and the volume of the current player.
class TransportBar : public QWidget
{
    Q_OBJECT

public:
    TransportBar(Session &session, const QList<QAction *> &buttons, QAction *mute);

private:
    void followPlayer();
    void showPosition();
    void showSettings();
    void seekToSlider();

    Session &session;
    QSlider *seekSlider;
    QSlider *volumeSlider;
    QLabel *times;
    QAction *muteAction;
};

QString clockText(double seconds); ///< "1:23" or "1:02:03"

#endif
