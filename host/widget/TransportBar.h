#ifndef TRANSPORTBAR_H
#define TRANSPORTBAR_H

#include "Bar.h"
#include "Session.h"

class QLabel;

/// The seek bar, and below it the buttons, times, title and volume. Leaves out what has no room.
class TransportBar : public QWidget
{
    Q_OBJECT

public:
    TransportBar(Session &session, std::function<void(QPoint)> showMenu);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QWidget *makeButton(const char *command);
    QWidget *makeMenuButton();
    void showTimes();
    void showVolume();
    void showTitle();

    Session &session;
    std::function<void(QPoint)> showMenu;
    Bar *seekBar;
    Bar *volumeBar;
    QLabel *times;
    QLabel *title;
};

#endif
