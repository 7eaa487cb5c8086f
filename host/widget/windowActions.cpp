// The widget host's menus and docks.

#include "ControlPanel.h"
#include "MainWindow.h"

#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QListView>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QTableView>

QAction *MainWindow::addTo(QMenu *menu, const QString &text, const QList<QKeySequence> &keys,
                           const std::function<void()> &run)
{
    QAction *action = menu->addAction(text);
    action->setShortcuts(keys);
    addAction(action); // the keys work while the menu is hidden, too
    connect(action, &QAction::triggered, this, run);
    return action;
}

QAction *MainWindow::addCheckable(QMenu *menu, const QString &text, const QKeySequence &key,
                                  const std::function<void(bool)> &run)
{
    QAction *action = menu->addAction(text);
    action->setCheckable(true);
    action->setShortcut(key);
    addAction(action);
    connect(action, &QAction::triggered, this, run);
    return action;
}

void MainWindow::buildActions()
{
    const auto withPlayer = [this](auto run) {
        return [this, run] {
            if (session.player())
                run(*session.player());
        };
    };

    QMenu *file = menuBar()->addMenu(tr("&File"));
    addTo(file, tr("&Open files..."), {QKeySequence::Open}, [this] { chooseFiles(); });
    addTo(file, tr("Open &address..."), {tr("Ctrl+L")}, [this] { askForAddress(); });
    addTo(file, tr("&Quit"), {QKeySequence::Quit}, [this] { close(); });

    QMenu *playback = menuBar()->addMenu(tr("&Playback"));
    playAction = addTo(playback, tr("&Play"), {Qt::Key_Space, Qt::Key_MediaTogglePlayPause},
                       [this] { session.togglePlaying(); });
    stopAction = addTo(playback, tr("&Stop"), {Qt::Key_S, Qt::Key_MediaStop},
                       withPlayer([](Player &player) { player.stop(); }));
    previousAction = addTo(playback, tr("P&revious"), {Qt::Key_P, Qt::Key_MediaPrevious},
                           [this] { session.playEntry(session.entry() - 1); });
    nextAction = addTo(playback, tr("&Next"), {Qt::Key_N, Qt::Key_MediaNext},
                       [this] { session.playEntry(session.entry() + 1); });
    stopAction->setIcon(style()->standardIcon(QStyle::SP_MediaStop));
    previousAction->setIcon(style()->standardIcon(QStyle::SP_MediaSkipBackward));
    nextAction->setIcon(style()->standardIcon(QStyle::SP_MediaSkipForward));
    playback->addSeparator();
    addTo(playback, tr("&Back 5 seconds"), {Qt::Key_Left}, [this] { session.seekBy(-5); });
    addTo(playback, tr("&Forward 5 seconds"), {Qt::Key_Right}, [this] { session.seekBy(5); });
    addTo(playback, tr("To the &start"), {Qt::Key_Home},
          withPlayer([](Player &player) { player.seek(0); }));
    playback->addSeparator();
    addTo(playback, tr("L&ouder"), {Qt::Key_Up}, [this] { changeVolume(0.05); });
    addTo(playback, tr("So&fter"), {Qt::Key_Down}, [this] { changeVolume(-0.05); });
    muteAction = addCheckable(playback, tr("&Mute"), Qt::Key_M, [this](bool on) {
        if (session.player())
            session.player()->setMuted(on);
    });

    QMenu *player = menuBar()->addMenu(tr("P&layer"));
    addTo(player, tr("&Add"), {Qt::Key_Plus}, [this] { session.addPlayer(); });
    addTo(player, tr("&Remove"), {Qt::Key_Minus}, [this] { session.removePlayer(); });
    player->addSeparator();
    shownAction = addCheckable(player, tr("&Show the picture"), Qt::Key_H, [this](bool on) {
        if (session.player())
            session.player()->showControl(on);
    });
    controlAction = addCheckable(player, tr("Has a &control"), Qt::Key_D, [this](bool on) {
        if (Player *current = session.player())
            on ? current->createControl() : current->destroyControl();
    });

    QMenu *view = menuBar()->addMenu(tr("&View"));
    addTo(view, tr("&Full screen"), {Qt::Key_F, Qt::Key_F11}, [this] { toggleFullScreen(); });
    QAction *trace = addCheckable(view, tr("&Trace on standard output"), Qt::Key_T,
                                  [this](bool on) { session.setTrace(on); });
    trace->setChecked(session.traces());
    connect(&session, &Session::traceChanged, trace,
            [this, trace] { trace->setChecked(session.traces()); });
    auto *leaveFullScreen = new QShortcut(QKeySequence::Cancel, this);
    connect(leaveFullScreen, &QShortcut::activated, this, [this] {
        if (isFullScreen())
            toggleFullScreen();
    });
}

QWidget *MainWindow::makePlaylist()
{
    auto *list = new QListView;
    list->setModel(session.playlistModel());
    list->setFocusPolicy(Qt::ClickFocus);
    connect(list, &QListView::activated, this,
            [this](const QModelIndex &index) { session.playEntry(index.row()); });
    connect(&session, &Session::entryChanged, list, [this, list] {
        list->setCurrentIndex(session.playlistModel()->index(session.entry(), 0));
    });
    auto *remove = new QShortcut(QKeySequence::Delete, list);
    remove->setContext(Qt::WidgetShortcut);
    connect(remove, &QShortcut::activated, this,
            [this, list] { session.removeEntry(list->currentIndex().row()); });
    return list;
}

QWidget *MainWindow::makeRecordView()
{
    auto *table = new QTableView;
    table->setModel(session.recordModel());
    table->setFocusPolicy(Qt::NoFocus);
    table->setSelectionMode(QAbstractItemView::NoSelection);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 2);
    table->horizontalHeader()->setStretchLastSection(true);
    return table;
}

void MainWindow::buildDocks()
{
    QMenu *view = menuBar()->actions().last()->menu();
    view->addSeparator();
    const auto addDock = [this, view](const QString &title, QWidget *content) {
        auto *dock = new QDockWidget(title);
        dock->setObjectName(title);
        dock->setWidget(content);
        addDockWidget(Qt::RightDockWidgetArea, dock);
        view->addAction(dock->toggleViewAction());
        return dock;
    };
    QDockWidget *list = addDock(tr("Play list"), makePlaylist());
    QDockWidget *picture = addDock(tr("Picture"), new ControlPanel(session));
    QDockWidget *record = addDock(tr("Record"), makeRecordView());
    resizeDocks({record}, {290}, Qt::Horizontal);
    resizeDocks({list, picture, record}, {90, 230, 250}, Qt::Vertical);
}
