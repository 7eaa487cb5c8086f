#ifndef CONTROLPANEL_H
#define CONTROLPANEL_H

#include "Session.h"

#include <QtWidgets/QWidget>

class QCheckBox;
class QSlider;
class QSpinBox;

/// How the current player's picture lies in its place, and what hiding does to it.
class ControlPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ControlPanel(Session &session);

private:
    void followPlayer();
    void showSettings();
    void applyCrop();
    void applyTransform();
    QSpinBox *makeSpinBox(int from, int to, const QString &suffix);
    QCheckBox *makeCheckBox(const QString &text, void (Player::*set)(bool));

    Session &session;
    QSpinBox *crop[4];
    QSlider *opacity;
    QCheckBox *mirrorSideways;
    QCheckBox *mirrorUpright;
    QSpinBox *angle;
    QCheckBox *keepAspect;
    QCheckBox *pauseOnHide;
    QCheckBox *resumeOnShow;
};

#endif
