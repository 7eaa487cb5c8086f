#include "Commands.h"

#include "Look.h"
#include "Session.h"

using MediaPlayer::Player;

constexpr qint64 jump = 5000; // milliseconds

void Command::setDrawing(const QString &name)
{
    theDrawing = name;
    setIcon(look::icon(name));
    setIconVisibleInMenu(false); // the place is for check marks
}

QStringList Command::keys() const
{
    return QKeySequence::listToString(shortcuts(), QKeySequence::PortableText)
        .split(QStringLiteral("; "), Qt::SkipEmptyParts);
}

QString Command::hint() const
{
    return shortcut().toString(QKeySequence::NativeText);
}

QString Command::label() const
{
    const QString name = QString(text()).remove(QLatin1Char('&'));
    return hint().isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, hint());
}

Commands::Commands(Session &theSession) : session(theSession)
{
    addPlaying();
    addLine();
    addShowing();
    addLine();
    addOpening();
    followSession();
}

Command *Commands::named(const QString &name) const
{
    auto *command = findChild<Command *>(name);
    Q_ASSERT(command);
    return command;
}

Command *Commands::add(const QString &name, const QString &text, const QList<QKeySequence> &keys,
                       const std::function<void()> &run, const QString &drawing)
{
    auto *command = new Command(text, this);
    command->setObjectName(name);
    command->setShortcuts(keys);
    if (!drawing.isEmpty())
        command->setDrawing(drawing);
    connect(command, &QAction::triggered, &session, run);
    list.append(command);
    return command;
}

void Commands::addOpening()
{
    add(QStringLiteral("open"), tr("&Open files..."), {QKeySequence::Open},
        [this] { Q_EMIT filesWanted(); });
    add(QStringLiteral("folder"), tr("Open f&older..."), {tr("Ctrl+Shift+O")},
        [this] { Q_EMIT folderWanted(); });
    add(QStringLiteral("address"), tr("Open &address..."), {tr("Ctrl+L")},
        [this] { Q_EMIT addressWanted(); });
    add(QStringLiteral("quit"), tr("&Quit"), {QKeySequence::Quit}, [this] { Q_EMIT quitWanted(); });
}

void Commands::addPlaying()
{
    add(
        QStringLiteral("play"), tr("&Play"),
        {Qt::Key_Space, Qt::Key_K, Qt::Key_MediaTogglePlayPause},
        [this] { session.togglePlaying(); }, QStringLiteral("play"));
    add(
        QStringLiteral("stop"), tr("&Stop"), {Qt::Key_S, Qt::Key_MediaStop},
        [this] { session.player()->stop(); }, QStringLiteral("stop"));
    add(
        QStringLiteral("previous"), tr("P&revious"), {Qt::Key_P, Qt::Key_MediaPrevious},
        [this] { session.previous(); }, QStringLiteral("previous"));
    add(
        QStringLiteral("next"), tr("&Next"), {Qt::Key_N, Qt::Key_MediaNext},
        [this] { session.next(); }, QStringLiteral("next"));
    addLine();
    add(QStringLiteral("back"), tr("&Back 5 seconds"), {Qt::Key_Left},
        [this] { session.seekBy(-jump); });
    add(QStringLiteral("forward"), tr("&Forward 5 seconds"), {Qt::Key_Right},
        [this] { session.seekBy(jump); });
    add(QStringLiteral("start"), tr("From the s&tart"), {Qt::Key_Home},
        [this] { session.player()->setPosition(0); });
    addLine();
    add(QStringLiteral("louder"), tr("L&ouder"), {Qt::Key_Up}, [this] { session.changeVolume(1); });
    add(QStringLiteral("softer"), tr("Sof&ter"), {Qt::Key_Down},
        [this] { session.changeVolume(-1); });
    add(
        QStringLiteral("mute"), tr("&Mute"), {Qt::Key_M}, [this] { session.toggleMuted(); },
        QStringLiteral("volume"))
        ->setCheckable(true);
}

void Commands::addShowing()
{
    add(
        QStringLiteral("fullscreen"), tr("&Full screen"), {Qt::Key_F, Qt::Key_F11},
        [this] { session.setFullScreen(!session.isFullScreen()); }, QStringLiteral("fullscreen"))
        ->setCheckable(true);
    add(
        QStringLiteral("list"), tr("Play &list"), {Qt::Key_L},
        [this] { session.setListShown(!session.isListShown()); }, QStringLiteral("list"))
        ->setCheckable(true);
    add(QStringLiteral("developer"), tr("&Developer's panel"), {Qt::Key_F12}, [this] {
        session.setDeveloperShown(!session.isDeveloperShown());
    })->setCheckable(true);
    add(QStringLiteral("leave"), tr("Leave full screen"), {QKeySequence::Cancel}, [this] {
        session.setFullScreen(false);
    })->listed = false;
}

// Clicking a command turns its mark; what it stands for has the last word.
void Commands::followSession()
{
    const auto showState = [this] {
        const Player *player = session.player();
        Command *play = named(QStringLiteral("play"));
        play->setText(player->isPlaying() ? tr("&Pause") : tr("&Play"));
        play->setDrawing(player->isPlaying() ? QStringLiteral("pause") : QStringLiteral("play"));
        Command *mute = named(QStringLiteral("mute"));
        mute->setChecked(player->isMuted());
        mute->setDrawing(player->isMuted() ? QStringLiteral("muted") : QStringLiteral("volume"));
        Command *full = named(QStringLiteral("fullscreen"));
        full->setChecked(session.isFullScreen());
        full->setDrawing(session.isFullScreen() ? QStringLiteral("window")
                                                : QStringLiteral("fullscreen"));
        named(QStringLiteral("list"))->setChecked(session.isListShown());
        named(QStringLiteral("developer"))->setChecked(session.isDeveloperShown());
        const PlayList *entries = session.list();
        named(QStringLiteral("previous"))->setEnabled(entries->current() > 0);
        named(QStringLiteral("next"))->setEnabled(entries->current() + 1 < entries->count());
    };
    connect(session.player(), &Player::playingChanged, this, showState);
    connect(session.player(), &Player::mutedChanged, this, showState);
    connect(session.list(), &PlayList::currentChanged, this, showState);
    connect(session.list(), &PlayList::countChanged, this, showState);
    connect(&session, &Session::shownChanged, this, showState);
    showState();
}
