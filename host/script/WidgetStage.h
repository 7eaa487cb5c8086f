#ifndef WIDGETSTAGE_H
#define WIDGETSTAGE_H

#include "Stage.h"

#include <QtWidgets/QWidget>

/// A script's window of widgets.
class WidgetStage : public Stage
{
public:
    explicit WidgetStage(const PluginLibrary &library);
    void resize(QSize size) override { window.resize(size); }
    QImage picture() override;

protected:
    QObject *makePlace() override;
    void movePlace(QObject *place, const QRect &rect) override;
    BasicWidget *makeControl(QObject *place) override;

private:
    QWidget window; // goes before the players, whose pictures are in it
};

#endif
