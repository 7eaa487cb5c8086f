#include "WidgetStage.h"

#include <QtGui/QScreen>

WidgetStage::WidgetStage(const PluginLibrary &library) : Stage(library)
{
    window.installEventFilter(this);
    window.resize(960, 540);
    window.show();
}

QImage WidgetStage::picture()
{
    const QPixmap fromScreen = window.screen()->grabWindow(window.winId());
    return (fromScreen.isNull() ? window.grab() : fromScreen).toImage();
}

QObject *WidgetStage::makePlace()
{
    auto *place = new QWidget(&window);
    place->setAutoFillBackground(true);
    place->setPalette(QPalette(Qt::black));
    place->show();
    return place;
}

void WidgetStage::movePlace(QObject *place, const QRect &rect)
{
    static_cast<QWidget *>(place)->setGeometry(rect);
}

BasicWidget *WidgetStage::makeControl(QObject *place)
{
    auto *widget = static_cast<QWidget *>(place);
    return plugin.create(widget, 0, 0, widget->width(), widget->height());
}
