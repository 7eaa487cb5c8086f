#ifndef VIDEOAREA_H
#define VIDEOAREA_H

#include "Player.h"
#include "PluginLibrary.h"

#include <QtWidgets/QWidget>

/// The place of one player's picture in a widget host. The control is a child widget of it.
class VideoArea : public QWidget
{
    Q_OBJECT

public:
    VideoArea(Player &player, const PluginLibrary &library);

    /// Draws the frame that tells which player the tools work on.
    void setCurrent(bool current);

Q_SIGNALS:
    void clicked();
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    BasicWidget *makeControl(const PluginLibrary &library);
    QRect place() const;

    QPointer<Player> player;
    bool isCurrent = false;
    bool hasBeenSized = false;
};

#endif
