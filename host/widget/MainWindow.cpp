#include "MainWindow.h"

#include "Commands.h"
#include "DeveloperPanel.h"
#include "FilmArea.h"
#include "TransportBar.h"

#include <QtCore/QMimeData>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QListView>

constexpr int listWidth = 240;
constexpr int developerWidth = 300;

MainWindow::MainWindow(Session &theSession)
    : session(theSession)
    , area(new FilmArea(session))
    , bar(new TransportBar(session, [this](QPoint place) { menu.popup(place); }))
    , list(makeList())
    , developer(new DeveloperPanel(*session.developer(), *area->film()))
{
    for (QWidget *part : {static_cast<QWidget *>(area), list, static_cast<QWidget *>(developer),
                          static_cast<QWidget *>(bar)})
        part->setParent(this);
    setAcceptDrops(true);
    setMinimumSize(320, 200);
    buildMenu();
    connect(&session, &Session::shownChanged, this, &MainWindow::showState);
    connect(&session, &Session::mediaChanged, this, &MainWindow::showState);

    resize(session.firstSize(*screen()));
    session.memory().isMaximized() ? showMaximized() : show();
    session.watch(windowHandle());
    showState();
}

void MainWindow::buildMenu()
{
    for (QObject *object : session.commands()->all()) {
        auto *command = static_cast<Command *>(object);
        if (!command) {
            menu.addSeparator();
            continue;
        }
        addAction(command); // its keys work in the whole window
        if (command->listed)
            menu.addAction(command);
        if (command->objectName() == QLatin1String("address"))
            recent = menu.addMenu(tr("Open r&ecent"));
    }
    connect(recent, &QMenu::aboutToShow, this, &MainWindow::showRecent);
    Commands *commands = session.commands();
    connect(commands, &Commands::filesWanted, this, &MainWindow::chooseFiles);
    connect(commands, &Commands::folderWanted, this, &MainWindow::chooseFolder);
    connect(commands, &Commands::addressWanted, this, &MainWindow::askForAddress);
    connect(commands, &Commands::quitWanted, this, &QWidget::close);
}

void MainWindow::showRecent()
{
    recent->clear();
    const QStringList names = session.recent();
    for (int row = 0; row < names.size(); ++row)
        recent->addAction(names[row], this, [this, row] { session.openRecent(row); });
}

QWidget *MainWindow::makeList()
{
    auto *view = new QListView;
    view->setModel(session.list());
    view->setFrameShape(QFrame::NoFrame);
    view->setTextElideMode(Qt::ElideMiddle);
    view->setStyleSheet(QStringLiteral("QListView::item { padding: 5px }"));
    view->setFocusPolicy(Qt::ClickFocus);
    connect(view, &QListView::doubleClicked, this,
            [this](const QModelIndex &index) { session.playRow(index.row()); });
    connect(session.list(), &PlayList::currentChanged, view, [this, view] {
        view->setCurrentIndex(session.list()->index(session.list()->current()));
    });
    auto *remove = new QShortcut(QKeySequence::Delete, view);
    remove->setContext(Qt::WidgetShortcut);
    connect(remove, &QShortcut::activated, this,
            [this, view] { session.removeRow(view->currentIndex().row()); });
    return view;
}

void MainWindow::layOut()
{
    const bool full = session.isFullScreen();
    const int barHeight = bar->sizeHint().height();
    int right = width();
    const auto placePanel = [&](QWidget *panel, bool shown, int most) {
        panel->setVisible(shown && !full);
        if (panel->isHidden())
            return;
        const int wide = std::min(most, width() * 45 / 100);
        panel->setGeometry(right -= wide, 0, wide, height() - barHeight);
    };
    placePanel(developer, session.isDeveloperShown(), developerWidth);
    placePanel(list, session.isListShown(), listWidth);
    area->setGeometry(0, 0, right, full ? height() : height() - barHeight);
    bar->setGeometry(0, height() - barHeight, width(), barHeight);
    bar->setVisible(!full || session.areControlsShown());
}

void MainWindow::showState()
{
    setWindowTitle(session.title().isEmpty() ? tr("Media player")
                                             : tr("%1 - Media player").arg(session.title()));
    setWindowState(windowState().setFlag(Qt::WindowFullScreen, session.isFullScreen()));
    session.areControlsShown() ? area->unsetCursor() : area->setCursor(Qt::BlankCursor);
    layOut();
}

void MainWindow::resizeEvent(QResizeEvent *)
{
    layOut();
}

void MainWindow::contextMenuEvent(QContextMenuEvent *event)
{
    menu.popup(event->globalPos());
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

void MainWindow::chooseFiles()
{
    const QList<QUrl> files = QFileDialog::getOpenFileUrls(
        this, tr("Open files"), session.folder(), session.fileFilters().join(QStringLiteral(";;")),
        nullptr, QFileDialog::HideNameFilterDetails);
    if (!files.isEmpty())
        session.open(files);
}

void MainWindow::chooseFolder()
{
    const QUrl folder =
        QFileDialog::getExistingDirectoryUrl(this, tr("Open folder"), session.folder());
    if (!folder.isEmpty())
        session.open({folder});
}

void MainWindow::askForAddress()
{
    session.openTyped(QInputDialog::getText(this, tr("Open address"), tr("Address:")));
}

QImage MainWindow::picture()
{
    repaint();
    const QPixmap fromScreen = screen()->grabWindow(winId());
    return (fromScreen.isNull() ? grab() : fromScreen).toImage();
}
