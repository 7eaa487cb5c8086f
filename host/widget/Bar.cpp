#include "Bar.h"

#include "Look.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QLabel>

#include <algorithm>

constexpr double margin = 8; // the handle is as wide at both ends
constexpr double thickness = 4;
constexpr double handle = 6.5;

Bar::Bar(std::function<QString(double)> theTextAt, double theMark)
    : textAt(std::move(theTextAt)), mark(theMark)
{
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    setMinimumWidth(60);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Bar::setValue(double part)
{
    if (held || part == value)
        return;
    value = part;
    update();
}

double Bar::partAt(double x) const
{
    return std::clamp((x - margin) / (width() - 2 * margin), 0.0, 1.0);
}

void Bar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : 0.5);
    painter.setPen(Qt::NoPen);
    const double length = width() - 2 * margin;
    const auto fill = [&](double from, double to, const QColor &colour) {
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(margin + from * length, (height() - thickness) / 2,
                                       (to - from) * length, thickness),
                                thickness / 2, thickness / 2);
    };
    fill(0, 1, look::track);
    fill(0, std::min(value, mark), look::accent);
    if (value > mark)
        fill(mark, value, look::warning);
    painter.setBrush(value > mark ? look::warning : look::accent);
    painter.drawEllipse(QPointF(margin + value * length, height() / 2.0), handle, handle);
}

void Bar::goTo(double x)
{
    value = partAt(x);
    update();
    Q_EMIT moved(value);
}

void Bar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    held = true;
    goTo(event->position().x());
}

void Bar::mouseMoveEvent(QMouseEvent *event)
{
    if (held)
        goTo(event->position().x());
    showText(event->position().x());
}

void Bar::mouseReleaseEvent(QMouseEvent *)
{
    held = false;
}

void Bar::showText(double x)
{
    if (!bubble) {
        bubble = new QLabel(window());
        bubble->setAttribute(Qt::WA_TransparentForMouseEvents);
        bubble->setStyleSheet(QStringLiteral("background: #1f2937; color: white; "
                                             "border-radius: 4px; padding: 3px 6px"));
    }
    bubble->setText(textAt(partAt(x)));
    bubble->adjustSize();
    const QPoint above = mapTo(window(), QPoint(int(x), 0));
    const int rightmost = window()->width() - bubble->width();
    bubble->move(std::clamp(above.x() - bubble->width() / 2, 0, std::max(0, rightmost)),
                 above.y() - bubble->height() - 2);
    bubble->raise();
    bubble->show();
}

void Bar::leaveEvent(QEvent *)
{
    if (bubble)
        bubble->hide();
}
