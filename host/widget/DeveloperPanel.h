#ifndef DEVELOPERPANEL_H
#define DEVELOPERPANEL_H

#include "Session.h"

#include <MediaPlayer/PlayerWidget.h>

/// The record, the last answers and the switches.
class DeveloperPanel : public QWidget
{
    Q_OBJECT

public:
    DeveloperPanel(Developer &developer, MediaPlayer::PlayerWidget &film);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *makeRecord();
    QWidget *makeAnswers();
    QWidget *makeSwitches();
    void makeSwitch(class QVBoxLayout *column, const QString &text, bool on,
                    const std::function<void(bool)> &run);

    Developer &developer;
    MediaPlayer::PlayerWidget &film;
};

#endif
