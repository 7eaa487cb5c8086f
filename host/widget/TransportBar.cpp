#include "TransportBar.h"

#include "Commands.h"
#include "Look.h"

#include <QtGui/QWheelEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QToolButton>

TransportBar::TransportBar(Session &theSession, std::function<void(QPoint)> theShowMenu)
    : session(theSession)
    , showMenu(std::move(theShowMenu))
    , seekBar(new Bar([this](double part) { return session.timeAt(part); }))
    , volumeBar(
          new Bar([this](double part) { return session.volumeAt(part); }, session.fullVolume()))
    , times(new QLabel)
    , title(new QLabel)
{
    setAutoFillBackground(true);
    seekBar->setObjectName(QStringLiteral("seekBar"));
    volumeBar->setObjectName(QStringLiteral("volumeBar"));
    volumeBar->setFixedWidth(110);
    title->setMinimumWidth(0);
    title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    title->setTextFormat(Qt::PlainText);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(8, 6, 8, 6);
    column->setSpacing(2);
    column->addWidget(seekBar);
    auto *row = new QHBoxLayout;
    row->setSpacing(2);
    column->addLayout(row);
    for (const char *name : {"previous", "play", "next"})
        row->addWidget(makeButton(name));
    row->addWidget(times);
    row->addSpacing(8);
    row->addWidget(title, 1);
    row->addWidget(makeButton("mute"));
    row->addWidget(volumeBar);
    for (const char *name : {"list", "fullscreen"})
        row->addWidget(makeButton(name));
    row->addWidget(makeMenuButton());

    connect(seekBar, &Bar::moved, &session, &Session::seekTo);
    connect(volumeBar, &Bar::moved, &session, &Session::setVolume);
    connect(&session, &Session::timesChanged, this, &TransportBar::showTimes);
    connect(&session, &Session::mediaChanged, this, &TransportBar::showTitle);
    connect(&session, &Session::volumeChanged, this, &TransportBar::showVolume);
    showTimes();
    showVolume();
}

QWidget *TransportBar::makeButton(const char *command)
{
    Command *action = session.commands()->named(QLatin1String(command));
    auto *button = new QToolButton;
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    button->setIconSize({20, 20});
    button->setFocusPolicy(Qt::NoFocus); // the keys belong to the commands
    const auto describe = [button, action] { button->setToolTip(action->label()); };
    connect(action, &QAction::changed, button, describe);
    describe();
    return button;
}

QWidget *TransportBar::makeMenuButton()
{
    auto *button = new QToolButton;
    button->setIcon(look::icon(QStringLiteral("menu")));
    button->setIconSize({20, 20});
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setToolTip(tr("Menu"));
    connect(button, &QToolButton::clicked, this,
            [this, button] { showMenu(button->mapToGlobal(QPoint())); });
    return button;
}

void TransportBar::showTimes()
{
    times->setText(session.times());
    seekBar->setEnabled(session.player()->isSeekable());
    seekBar->setValue(session.place());
}

void TransportBar::showVolume()
{
    volumeBar->setValue(session.volume());
}

void TransportBar::showTitle()
{
    title->setToolTip(session.caption());
    title->setText(
        title->fontMetrics().elidedText(session.caption(), Qt::ElideRight, title->width()));
}

void TransportBar::resizeEvent(QResizeEvent *)
{
    constexpr int narrow = 520;
    volumeBar->setVisible(width() >= narrow);
    showTitle();
}

void TransportBar::wheelEvent(QWheelEvent *event)
{
    session.turnWheel(event->angleDelta().y());
}
