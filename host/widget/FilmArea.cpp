#include "FilmArea.h"

#include "Look.h"

#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

namespace
{

constexpr int space = 16;

/// Drawn over the picture; takes no events.
class Words : public QWidget
{
public:
    Words(Session &theSession, QWidget *parent) : QWidget(parent), session(theSession)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    void refresh()
    {
        setVisible(session.isSoundOnly() || !session.headline().isEmpty()
                   || !session.notice().isEmpty());
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const bool fails = session.player()->error() != MediaPlayer::Player::NoError;
        if (!session.headline().isEmpty()) {
            painter.fillRect(rect(), QColor(0, 0, 0, fails ? 255 : 128)); // told here, and legible
            drawLines(painter, rect(), session.headline(), session.details());
        } else if (session.isSoundOnly())
            drawSound(painter);
        if (!session.notice().isEmpty())
            drawNotice(painter);
    }

private:
    void drawLines(QPainter &painter, const QRect &place, const QString &large,
                   const QString &small)
    {
        const QRect inside = place.adjusted(space, 0, -space, 0);
        QFont font = painter.font();
        font.setPointSizeF(font.pointSizeF() * 1.5);
        const QFontMetrics metrics(font);
        const QString first = metrics.elidedText(large, Qt::ElideMiddle, inside.width());
        const int middle = place.center().y();
        painter.save();
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(
            QRect(inside.left(), middle - metrics.height(), inside.width(), metrics.height()),
            Qt::AlignCenter, first);
        painter.restore();
        painter.setPen(look::track);
        painter.drawText(QRect(inside.left(), middle + 6, inside.width(), inside.bottom() - middle),
                         Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, small);
    }

    void drawSound(QPainter &painter)
    {
        constexpr int lines = 70;
        const int side = std::min({width() - 2 * space, height() - lines - 2 * space, 480});
        if (side > 0) {
            const QImage cover = session.coverSerial()
                ? session.cover()
                : look::image(QStringLiteral("note"), 240, look::line);
            QRect place(QPoint(), cover.size().scaled(side, side, Qt::KeepAspectRatio));
            place.moveCenter({width() / 2, (height() - lines) / 2});
            painter.drawImage(place, cover);
        }
        drawLines(painter, QRect(0, height() - lines - space, width(), lines), session.title(),
                  session.artist());
    }

    void drawNotice(QPainter &painter)
    {
        const QFontMetrics metrics = painter.fontMetrics();
        const QString text =
            metrics.elidedText(session.notice(), Qt::ElideMiddle, width() - 4 * space);
        const QRectF place(space, space, metrics.horizontalAdvance(text) + 1.5 * space,
                           metrics.height() + space * 0.75);
        painter.setPen(Qt::NoPen);
        painter.setBrush(session.warns() ? look::warning : QColor(0x1f, 0x29, 0x37, 220));
        painter.drawRoundedRect(place, 6, 6);
        painter.setPen(Qt::white);
        painter.drawText(place, Qt::AlignCenter, text);
    }

    Session &session;
};

} // namespace

FilmArea::FilmArea(Session &theSession)
    : session(theSession), picture(new MediaPlayer::PlayerWidget(this))
{
    picture->setPlayer(session.player());
    auto *over = new Words(session, this);
    words = over;
    connect(&session, &Session::told, over, &Words::refresh);
    connect(&session, &Session::mediaChanged, over, &Words::refresh);
    over->refresh();
}

void FilmArea::resizeEvent(QResizeEvent *)
{
    picture->setGeometry(rect());
    words->setGeometry(rect());
}

void FilmArea::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        session.setFullScreen(!session.isFullScreen());
}

void FilmArea::wheelEvent(QWheelEvent *event)
{
    session.turnWheel(event->angleDelta().y());
}
