#include "TransportBar.h"

#include <QtCore/QTime>
#include <QtGui/QAction>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolButton>

#include <cmath>

static QSlider *makeSlider(int maximum)
{
    auto *slider = new QSlider(Qt::Horizontal);
    slider->setRange(0, maximum);
    slider->setFocusPolicy(Qt::NoFocus); // the arrow keys seek and change the volume
    return slider;
}

static QToolButton *makeButton(QAction *action)
{
    auto *button = new QToolButton;
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

TransportBar::TransportBar(Session &theSession, const QList<QAction *> &buttons, QAction *mute)
    : session(theSession)
    , seekSlider(makeSlider(0))
    , volumeSlider(makeSlider(100))
    , times(new QLabel)
    , muteAction(mute)
{
    auto *row = new QHBoxLayout(this);
    for (QAction *action : buttons)
        row->addWidget(makeButton(action));
    row->addWidget(seekSlider, 4);
    row->addWidget(times);
    row->addWidget(makeButton(mute));
    row->addWidget(volumeSlider, 1);

    connect(seekSlider, &QSlider::sliderMoved, this, &TransportBar::seekToSlider);
    connect(seekSlider, &QSlider::actionTriggered, this, &TransportBar::seekToSlider);
    connect(volumeSlider, &QSlider::valueChanged, this, [this](int percent) {
        if (session.player() && std::lround(session.player()->volume() * 100) != percent)
            session.player()->setVolume(percent / 100.0);
    });
    connect(&session, &Session::currentChanged, this, &TransportBar::followPlayer);
    followPlayer();
}

void TransportBar::followPlayer()
{
    if (!session.player())
        return;
    connect(session.player(), &Player::published, this, &TransportBar::showPosition,
            Qt::UniqueConnection);
    connect(session.player(), &Player::settingsChanged, this, &TransportBar::showSettings,
            Qt::UniqueConnection);
    showPosition();
    showSettings();
}

void TransportBar::showPosition()
{
    const Player *player = session.player();
    if (!player)
        return;
    seekSlider->setMaximum(int(player->duration() * 1000));
    if (!seekSlider->isSliderDown())
        seekSlider->setValue(int(player->position() * 1000));
    times->setText(clockText(player->position()) + QStringLiteral(" / ")
                   + clockText(player->duration()));
}

void TransportBar::showSettings()
{
    if (!session.player())
        return;
    volumeSlider->setValue(int(std::lround(session.player()->volume() * 100)));
    const bool muted = session.player()->isMuted();
    muteAction->setChecked(muted);
    muteAction->setIcon(
        style()->standardIcon(muted ? QStyle::SP_MediaVolumeMuted : QStyle::SP_MediaVolume));
}

void TransportBar::seekToSlider()
{
    if (session.player())
        session.player()->seek(seekSlider->sliderPosition() / 1000.0);
}

QString clockText(double seconds)
{
    const QTime time = QTime(0, 0).addMSecs(int(seconds * 1000));
    return time.toString(time.hour() > 0 ? QStringLiteral("h:mm:ss") : QStringLiteral("m:ss"));
}
