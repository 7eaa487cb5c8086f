#include "QuickStage.h"

#include <QtQuick/QQuickItem>

QuickStage::QuickStage(const PluginLibrary &library) : Stage(library)
{
    window.installEventFilter(this);
    window.resize(960, 540);
    window.setColor(Qt::black);
    window.show();
}

// Between the cell and the place is a parent of its own: the plug-in moves the parent of the item
// that it is given to (0, 0).
QObject *QuickStage::makePlace()
{
    auto *cell = new QQuickItem(window.contentItem());
    auto *place = new QQuickItem(new QQuickItem(cell));
    place->setClip(true); // a cropped picture is larger than its place
    return place;
}

void QuickStage::movePlace(QObject *place, const QRect &rect)
{
    auto *item = static_cast<QQuickItem *>(place);
    item->parentItem()->parentItem()->setPosition(rect.topLeft());
    item->setSize(rect.size());
}

BasicWidget *QuickStage::makeControl(QObject *place)
{
    return plugin.createQml(&window, static_cast<QQuickItem *>(place), nullptr, 0, 0, 0, 0);
}
