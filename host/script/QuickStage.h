#ifndef QUICKSTAGE_H
#define QUICKSTAGE_H

#include "Stage.h"

#include <QtQuick/QQuickWindow>

/// A script's window of Qt Quick items.
class QuickStage : public Stage
{
public:
    explicit QuickStage(const PluginLibrary &library);
    void resize(QSize size) override { window.resize(size); }
    QImage picture() override { return window.grabWindow(); }

protected:
    QObject *makePlace() override;
    void movePlace(QObject *place, const QRect &rect) override;
    BasicWidget *makeControl(QObject *place) override;

private:
    QQuickWindow window; // goes before the players, whose pictures are in it
};

#endif
