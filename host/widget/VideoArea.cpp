#include "VideoArea.h"

#include <QtGui/QPainter>

constexpr int frameWidth = 2;

VideoArea::VideoArea(Player &thePlayer, const PluginLibrary &library) : player(&thePlayer)
{
    setMinimumSize(160, 90);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    player->setControlFactory([this, &library] { return makeControl(library); });
    connect(player, &Player::controlChanged, this, qOverload<>(&QWidget::update));
}

BasicWidget *VideoArea::makeControl(const PluginLibrary &library)
{
    const QRect corners = place();
    BasicWidget *control =
        library.create(this, corners.left(), corners.top(), corners.right(), corners.bottom());
    // The control's own widget would swallow what is dropped on the picture.
    for (QWidget *child : findChildren<QWidget *>())
        child->setAcceptDrops(false);
    return control;
}

QRect VideoArea::place() const
{
    return rect().adjusted(frameWidth, frameWidth, -frameWidth, -frameWidth);
}

void VideoArea::setCurrent(bool current)
{
    isCurrent = current;
    update();
}

// The first size is the moment to make the control: a picture without a size cannot be drawn into.
void VideoArea::resizeEvent(QResizeEvent *)
{
    if (!player)
        return;
    if (!std::exchange(hasBeenSized, true))
        player->createControl();
    else
        player->moveControl(place());
}

void VideoArea::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), isCurrent ? palette().highlight() : palette().dark());
    painter.fillRect(place(), Qt::black);
    if (!player || player->isShown())
        return;
    painter.setPen(Qt::lightGray);
    painter.drawText(place(), Qt::AlignCenter,
                     player->hasControl() ? tr("hidden") : tr("no control"));
}

void VideoArea::mousePressEvent(QMouseEvent *)
{
    Q_EMIT clicked();
}

void VideoArea::mouseDoubleClickEvent(QMouseEvent *)
{
    Q_EMIT doubleClicked();
}
