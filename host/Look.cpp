#include "Look.h"

#include <QtCore/QHash>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace look
{

QPalette palette()
{
    const QColor text(0x1f, 0x29, 0x37);
    const QColor window(0xf5, 0xf6, 0xf8);
    QPalette p(window);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::Base, Qt::white);
    p.setColor(QPalette::AlternateBase, QColor(0xee, 0xf1, 0xf5));
    p.setColor(QPalette::Button, QColor(0xfb, 0xfb, 0xfd));
    p.setColor(QPalette::ToolTipBase, text);
    p.setColor(QPalette::ToolTipText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(role, text);
    p.setColor(QPalette::PlaceholderText, QColor(0x6b, 0x72, 0x80));
    p.setColor(QPalette::Highlight, accent);
    p.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, disabled);
    return p;
}

namespace
{

/// Points on a field of 24 by 24: M begins a line, L goes on, Z closes it.
struct Drawing {
    const char *filled;
    const char *drawn;
};

constexpr char speaker[] = "M4 9 L8 9 L13 5 L13 19 L8 15 L4 15 Z";

const QHash<QString, Drawing> &drawings()
{
    static const QHash<QString, Drawing> all = {
        {QStringLiteral("play"), {"M8 5 L19 12 L8 19 Z", ""}},
        {QStringLiteral("pause"), {"M7 5 L10 5 L10 19 L7 19 Z M14 5 L17 5 L17 19 L14 19 Z", ""}},
        {QStringLiteral("stop"), {"M7 7 L17 7 L17 17 L7 17 Z", ""}},
        {QStringLiteral("previous"), {"M18 6 L9 12 L18 18 Z", "M6 6 L6 18"}},
        {QStringLiteral("next"), {"M6 6 L15 12 L6 18 Z", "M18 6 L18 18"}},
        {QStringLiteral("volume"), {speaker, "M16.5 9 L17.5 12 L16.5 15 M19 6 L21 12 L19 18"}},
        {QStringLiteral("muted"), {speaker, "M16.5 9.5 L21.5 14.5 M21.5 9.5 L16.5 14.5"}},
        {QStringLiteral("list"), {"", "M4 7 L20 7 M4 12 L20 12 M4 17 L14 17"}},
        {QStringLiteral("fullscreen"),
         {"", "M4 9 L4 4 L9 4 M15 4 L20 4 L20 9 M20 15 L20 20 L15 20 M9 20 L4 20 L4 15"}},
        {QStringLiteral("window"),
         {"", "M9 4 L9 9 L4 9 M15 4 L15 9 L20 9 M20 15 L15 15 L15 20 M9 20 L9 15 L4 15"}},
        {QStringLiteral("menu"),
         {"M11.5 5 L12.5 5 L12.5 6 L11.5 6 Z M11.5 11.5 L12.5 11.5 L12.5 "
          "12.5 L11.5 12.5 Z M11.5 18 L12.5 18 L12.5 19 L11.5 19 Z",
          ""}},
        {QStringLiteral("note"),
         {"M6 16 L9 16 L9 19 L6 19 Z M15 14 L18 14 L18 17 L15 17 Z", "M9 18 L9 6 L18 4 L18 16"}},
    };
    return all;
}

QPainterPath path(const char *text)
{
    QPainterPath result;
    QStringList words = QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    while (!words.isEmpty()) {
        const QString word = words.takeFirst();
        if (word == QLatin1String("Z")) {
            result.closeSubpath();
            continue;
        }
        const QPointF point(word.mid(1).toDouble(), words.takeFirst().toDouble());
        if (word[0] == QLatin1Char('M'))
            result.moveTo(point);
        else
            result.lineTo(point);
    }
    return result;
}

} // namespace

QImage image(const QString &name, int pixels, const QColor &colour)
{
    QImage result(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    const Drawing drawing = drawings().value(name, {"", ""});
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / 24.0, pixels / 24.0);
    painter.setPen(QPen(colour, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path(drawing.drawn));
    painter.setBrush(colour);
    painter.drawPath(path(drawing.filled));
    return result;
}

QIcon icon(const QString &name)
{
    QIcon result;
    for (const int pixels : {20, 24, 30, 36, 40, 60}) {
        result.addPixmap(QPixmap::fromImage(image(name, pixels)));
        result.addPixmap(QPixmap::fromImage(image(name, pixels, disabled)), QIcon::Disabled);
    }
    return result;
}

} // namespace look
