#ifndef MAINWINDOW_H
#define MAINWINDOW_H

#include "Session.h"
#include "VideoArea.h"

#include <QtWidgets/QMainWindow>

class QGridLayout;

/// The widget host's window: the grid of players, the play list and the tools.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(Session &session, const PluginLibrary &library);
    ~MainWindow() override;

    QImage picture(); ///< the window as it is on the screen

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildActions();
    void buildCentre();
    void buildDocks();
    QAction *addTo(QMenu *menu, const QString &text, const QList<QKeySequence> &keys,
                   const std::function<void()> &run);
    QAction *addCheckable(QMenu *menu, const QString &text, const QKeySequence &key,
                          const std::function<void(bool)> &run);
    QWidget *makePlaylist();
    QWidget *makeRecordView();
    void chooseFiles();
    void askForAddress();
    void addArea(int row);
    void removeArea(int row);
    void layOutAreas();
    void showCurrent();
    void showState();
    void changeVolume(double by);
    void toggleFullScreen();

    Session &session;
    const PluginLibrary &library;
    QList<VideoArea *> areas;
    QByteArray docksOfWindow;
    QGridLayout *grid = nullptr;
    QWidget *transport = nullptr;
    QAction *playAction = nullptr;
    QAction *stopAction = nullptr;
    QAction *muteAction = nullptr;
    QAction *shownAction = nullptr;
    QAction *controlAction = nullptr;
    QAction *previousAction = nullptr;
    QAction *nextAction = nullptr;
};

#endif
