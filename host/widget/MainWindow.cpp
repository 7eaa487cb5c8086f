#include "MainWindow.h"

#include "TransportBar.h"

#include <QtCore/QMimeData>
#include <QtGui/QDropEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyle>

#include <algorithm>
#include <cmath>

MainWindow::MainWindow(Session &theSession, const PluginLibrary &theLibrary)
    : session(theSession), library(theLibrary)
{
    setAcceptDrops(true);
    resize(1200, 680);
    buildActions();
    buildCentre();
    buildDocks();

    QAbstractItemModel *players = session.playersModel();
    connect(players, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex &, int row) { addArea(row); });
    connect(players, &QAbstractItemModel::rowsRemoved, this,
            [this](const QModelIndex &, int row) { removeArea(row); });
    connect(&session, &Session::currentChanged, this, &MainWindow::showCurrent);
    connect(&session, &Session::messageChanged, this,
            [this] { statusBar()->showMessage(session.message()); });
    for (int row = 0; row < players->rowCount(); ++row)
        addArea(row);
    showCurrent();
}

MainWindow::~MainWindow()
{
    qDeleteAll(std::exchange(areas, {}));
}

void MainWindow::buildCentre()
{
    auto *centre = new QWidget;
    auto *column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    grid = new QGridLayout;
    grid->setSpacing(4);
    column->addLayout(grid, 1);
    transport =
        new TransportBar(session, {previousAction, playAction, stopAction, nextAction}, muteAction);
    column->addWidget(transport);
    setCentralWidget(centre);
}

void MainWindow::addArea(int row)
{
    Player *player = session.playerAt(row);
    auto *area = new VideoArea(*player, library);
    areas.insert(row, area);
    connect(area, &VideoArea::clicked, this,
            [this, area] { session.setCurrent(int(areas.indexOf(area))); });
    connect(area, &VideoArea::doubleClicked, this, &MainWindow::toggleFullScreen);
    connect(player, &Player::published, this, &MainWindow::showState);
    connect(player, &Player::controlChanged, this, &MainWindow::showState);
    layOutAreas();
}

void MainWindow::removeArea(int row)
{
    delete areas.takeAt(row);
    layOutAreas();
}

void MainWindow::layOutAreas()
{
    const int columns = std::max(1, int(std::ceil(std::sqrt(double(areas.size())))));
    for (int i = 0; i < areas.size(); ++i)
        grid->addWidget(areas[i], i / columns, i % columns);
    showCurrent();
}

void MainWindow::showCurrent()
{
    for (int i = 0; i < areas.size(); ++i)
        areas[i]->setCurrent(areas.size() > 1 && i == session.current());
    showState();
}

void MainWindow::showState()
{
    const Player *player = session.player();
    if (!player)
        return;
    playAction->setIcon(
        style()->standardIcon(player->isPlaying() ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    playAction->setText(player->isPlaying() ? tr("&Pause") : tr("&Play"));
    shownAction->setChecked(player->isShown());
    shownAction->setEnabled(player->hasControl());
    controlAction->setChecked(player->hasControl());
    const QUrl media(player->uri());
    setWindowTitle(media.isEmpty() ? tr("Media player host")
                                   : tr("%1 - Media player host").arg(media.fileName()));
}

void MainWindow::changeVolume(double by)
{
    if (Player *player = session.player())
        player->setVolume(std::clamp(player->volume() + by, 0.0, 1.0));
}

void MainWindow::chooseFiles()
{
    const QList<QUrl> files = QFileDialog::getOpenFileUrls(
        this, tr("Open media"), {},
        tr("Media (*.mp4 *.mkv *.webm *.avi *.mov *.mpg *.ogv *.mp3 *.ogg *.opus *.flac *.wav "
           "*.m4a);;All files (*)"));
    if (!files.isEmpty())
        session.open(files);
}

void MainWindow::askForAddress()
{
    const QString address = QInputDialog::getText(this, tr("Open address"), tr("Address:"));
    if (!address.isEmpty())
        session.open({QUrl::fromUserInput(address)});
}

void MainWindow::toggleFullScreen()
{
    const bool full = !isFullScreen();
    menuBar()->setVisible(!full);
    statusBar()->setVisible(!full);
    if (full) {
        docksOfWindow = saveState();
        for (QDockWidget *dock : findChildren<QDockWidget *>())
            dock->hide();
        showFullScreen();
    } else {
        restoreState(docksOfWindow);
        showNormal();
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    session.open(event->mimeData()->urls());
    event->acceptProposedAction();
}

QImage MainWindow::picture()
{
    const QPixmap fromScreen = screen()->grabWindow(winId());
    return (fromScreen.isNull() ? grab() : fromScreen).toImage();
}
