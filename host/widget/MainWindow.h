#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include "HostProgram.h"

#include <QtWidgets/QMenu>
#include <QtWidgets/QWidget>

class DeveloperPanel;
class FilmArea;
class TransportBar;

/// The widget host's window: the film, the bar below it, and two panels beside it. In full screen
/// the bar lies over the film.
class MainWindow : public QWidget, public HostWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Session &session);

    QImage picture() override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildMenu();
    void showRecent();
    QWidget *makeList();
    void layOut();
    void showState();
    void chooseFiles();
    void chooseFolder();
    void askForAddress();

    Session &session;
    QMenu menu;
    QMenu *recent = nullptr;
    FilmArea *area;
    TransportBar *bar;
    QWidget *list;
    DeveloperPanel *developer;
};

#endif
