#ifndef QUICKPLACES_H
#define QUICKPLACES_H

#include "Player.h"
#include "PluginLibrary.h"

#include <QtQuick/QQuickItem>

/// Gives players their places in a Qt Quick user interface.
class QuickPlaces : public QObject
{
    Q_OBJECT

public:
    explicit QuickPlaces(const PluginLibrary &library) : plugin(library) { }

    /// Makes the player's control in `item`, which is in a window and has a size: a picture
    /// without a size cannot be drawn into. Later controls of the player are made there too.
    Q_INVOKABLE void give(Player *player, QQuickItem *item);

private:
    const PluginLibrary &plugin;
};

#endif
