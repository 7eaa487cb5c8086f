#include "QuickPlaces.h"

#include <QtQuick/QQuickWindow>

void QuickPlaces::give(Player *player, QQuickItem *item)
{
    player->setControlFactory([this, place = QPointer(item)]() -> BasicWidget * {
        if (!place || !place->window())
            return nullptr;
        return plugin.createQml(place->window(), place, nullptr, 0, 0, 0, 0);
    });
    player->createControl();
}
