#include "Session.h"

#include "Cover.h"
#include "Look.h"
#include "mediaFiles.h"

#include <QtCore/QStandardPaths>
#include <QtCore/QTime>
#include <QtGui/QWheelEvent>

#include <algorithm>
#include <cmath>

using namespace std::chrono_literals;
using MediaPlayer::Player;

constexpr auto noticeTime = 5s;
constexpr auto slowTime = 700ms;
constexpr double volumeStep = 0.05;
constexpr double loudest = 2; // 200 %

Session::Session() : theDeveloper(thePlayer), theCommands(std::make_unique<Commands>(*this))
{
    thePlayer.setVolume(std::clamp(theMemory.volume(), 0.0, loudest));
    thePlayer.setMuted(theMemory.isMuted());
    noticeEnd.setInterval(noticeTime);
    slow.setInterval(slowTime);
    noticeEnd.setSingleShot(true);
    slow.setSingleShot(true);
    connect(&noticeEnd, &QTimer::timeout, this, [this] { tell({}); });
    connect(&slow, &QTimer::timeout, this, &Session::told);
    followPlayer();
    watchIdle();
    setDeveloperShown(theMemory.showsDeveloper());
}

Session::~Session()
{
    leaveMedia();
}

void Session::followPlayer()
{
    connect(&thePlayer, &Player::positionChanged, this, &Session::timesChanged);
    connect(&thePlayer, &Player::durationChanged, this, &Session::timesChanged);
    connect(&thePlayer, &Player::bufferProgressChanged, this, &Session::told);
    connect(&thePlayer, &Player::mediaStatusChanged, this, &Session::statusChanged);
    connect(&thePlayer, &Player::metaDataChanged, this, &Session::metaDataChanged);
    connect(&thePlayer, &Player::hasVideoChanged, this, &Session::metaDataChanged);
    connect(&thePlayer, &Player::hasAudioChanged, this, &Session::metaDataChanged);
    connect(&thePlayer, &Player::errorOccurred, this, &Session::failed);
    connect(&thePlayer, &Player::errorChanged, this, [this] {
        if (thePlayer.error() == Player::NoError && !thePlayer.errorString().isEmpty())
            tell(thePlayer.errorString(), true); // it plays, but not all of it
    });
    connect(&thePlayer, &Player::volumeChanged, &thePlayer,
            [this](double volume) { theMemory.setVolume(volume); });
    connect(&thePlayer, &Player::volumeChanged, this, &Session::volumeChanged);
    connect(&theList, &PlayList::currentChanged, this, &Session::mediaChanged);
    connect(&thePlayer, &Player::mutedChanged, &thePlayer,
            [this](bool muted) { theMemory.setMuted(muted); });
}

void Session::open(const QList<QUrl> &urls)
{
    const QList<QUrl> media = mediaAt(urls);
    if (media.isEmpty())
        return tell(tr("There is nothing to play in %1").arg(nameOf(urls.value(0))), true);
    theMemory.addRecent(urls[0]);
    Q_EMIT recentChanged();
    const int first = theList.append(media);
    if (theList.count() > 1)
        setListShown(true);
    playRow(first);
}

void Session::openTyped(const QString &address)
{
    if (!address.trimmed().isEmpty())
        open({urlOf(address.trimmed())});
}

void Session::playRow(int row)
{
    if (row < 0 || row >= theList.count())
        return;
    leaveMedia();
    const QUrl media = theList.media(row);
    theList.setCurrent(row);
    theList.setProblem(row, {});
    if (thePlayer.source() == media && thePlayer.error() == Player::NoError) {
        thePlayer.setPosition(0);
    } else {
        thePlayer.setSource(media);
        if (const qint64 place = theMemory.placeIn(media)) {
            thePlayer.setPosition(place);
            tell(tr("Goes on at %1; Home plays it from its start").arg(clockText(place)));
        }
    }
    thePlayer.play();
    metaDataChanged();
}

void Session::removeRow(int row)
{
    const bool plays = row == theList.current();
    if (plays)
        leaveMedia();
    theList.remove(row);
    if (!plays)
        return;
    if (row < theList.count())
        return playRow(row);
    thePlayer.setSource({});
    metaDataChanged();
}

/// A medium that has come to its end, or to nothing, begins at its start the next time.
void Session::leaveMedia()
{
    if (theList.current() < 0 || thePlayer.mediaStatus() == Player::LoadingMedia)
        return;
    theMemory.leave(theList.media(theList.current()), thePlayer.position(), thePlayer.duration());
}

// The list goes on, and says what it has left out. Not at once: the player is telling still.
void Session::failed()
{
    const int row = theList.current();
    theList.setProblem(row, thePlayer.errorString());
    Q_EMIT told();
    if (row + 1 >= theList.count())
        return;
    const QString reason = thePlayer.errorString();
    const QString name = nameOf(theList.media(row));
    tell(reason.contains(name) ? reason : tr("%1: %2").arg(name, reason), true);
    QMetaObject::invokeMethod(this, &Session::next, Qt::QueuedConnection);
}

void Session::statusChanged()
{
    if (thePlayer.mediaStatus() == Player::LoadingMedia)
        slow.start();
    else
        slow.stop();
    if (thePlayer.mediaStatus() == Player::EndOfMedia) {
        leaveMedia();
        QMetaObject::invokeMethod(this, &Session::next, Qt::QueuedConnection);
    }
    Q_EMIT told();
}

void Session::metaDataChanged()
{
    const QVariantMap data = thePlayer.metaData();
    theList.setTitle(theList.current(), data.value(QStringLiteral("title")).toString());
    theCover = isSoundOnly() ? coverOf(thePlayer.source(), data) : QImage();
    ++serial;
    Q_EMIT mediaChanged();
}

bool Session::isSoundOnly() const
{
    return thePlayer.hasAudio() && !thePlayer.hasVideo();
}

QString Session::artist() const
{
    const QVariantMap data = thePlayer.metaData();
    for (const char *key : {"contributingArtist", "albumArtist", "author"}) {
        const QString name =
            data.value(QLatin1String(key)).toStringList().join(QStringLiteral(", "));
        if (!name.isEmpty())
            return name;
    }
    return {};
}

QString Session::caption() const
{
    return artist().isEmpty() ? title() : tr("%1 - %2").arg(artist(), title());
}

QString Session::headline() const
{
    switch (thePlayer.mediaStatus()) {
    case Player::NoMedia:
        return tr("Drop films or music here");
    case Player::InvalidMedia:
        return tr("%1 cannot be played").arg(title());
    case Player::LoadingMedia:
        return slow.isActive() ? QString() : tr("Loading");
    case Player::StalledMedia:
    case Player::BufferingMedia:
        return tr("%1 %").arg(std::lround(thePlayer.bufferProgress() * 100));
    default:
        return {};
    }
}

QString Session::details() const
{
    switch (thePlayer.mediaStatus()) {
    case Player::NoMedia:
        return tr("or press Ctrl+O to open files");
    case Player::InvalidMedia:
        return thePlayer.errorString();
    default:
        return {};
    }
}

void Session::tell(const QString &text, bool warning)
{
    theNotice = text;
    noticeWarns = warning;
    if (text.isEmpty())
        noticeEnd.stop();
    else
        noticeEnd.start();
    Q_EMIT told();
}

QString Session::times() const
{
    const QString place = clockText(thePlayer.position());
    return thePlayer.duration() > 0
        ? place + QStringLiteral(" / ") + clockText(thePlayer.duration())
        : place;
}

QString Session::timeAt(double part) const
{
    return clockText(qint64(double(thePlayer.duration()) * part));
}

double Session::place() const
{
    const auto duration = double(thePlayer.duration());
    return duration > 0 ? double(thePlayer.position()) / duration : 0;
}

double Session::volume() const
{
    return thePlayer.volume() / loudest;
}

double Session::fullVolume() const
{
    return 1 / loudest;
}

QString Session::volumeAt(double part) const
{
    return tr("%1 %").arg(std::lround(part * loudest * 100));
}

void Session::togglePlaying()
{
    if (thePlayer.isPlaying())
        thePlayer.pause();
    else
        thePlayer.play();
}

void Session::seekTo(double part)
{
    thePlayer.setPosition(qint64(double(thePlayer.duration()) * std::clamp(part, 0.0, 1.0)));
}

void Session::seekBy(qint64 milliseconds)
{
    thePlayer.setPosition(thePlayer.position() + milliseconds);
}

void Session::changeVolume(int steps)
{
    setVolume((thePlayer.volume() + steps * volumeStep) / loudest);
}

// A touchpad turns it in steps of its own.
void Session::turnWheel(int delta)
{
    constexpr int wheelStep = QWheelEvent::DefaultDeltasPerStep;
    wheel += delta;
    if (const int steps = wheel / wheelStep)
        changeVolume(steps);
    wheel %= wheelStep;
}

void Session::setVolume(double part)
{
    const double wanted = std::round(part * loudest / volumeStep) * volumeStep;
    thePlayer.setMuted(false);
    thePlayer.setVolume(std::clamp(wanted, 0.0, loudest));
    tell(tr("Volume %1").arg(volumeAt(volume())), thePlayer.volume() > 1);
}

void Session::toggleMuted()
{
    thePlayer.setMuted(!thePlayer.isMuted());
    tell(thePlayer.isMuted() ? tr("Muted") : tr("Not muted"));
}

QStringList Session::fileFilters()
{
    return dialogFilters();
}

QColor Session::warning()
{
    return look::warning;
}

QUrl Session::folder() const
{
    const QUrl last(theMemory.recent().value(0));
    if (last.isLocalFile())
        return last.adjusted(QUrl::RemoveFilename);
    return QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
}

QStringList Session::recent() const
{
    QStringList names;
    for (const QString &address : theMemory.recent())
        names.append(nameOf(QUrl(address)));
    return names;
}

void Session::openRecent(int row)
{
    open({QUrl(theMemory.recent().value(row))});
}

QString clockText(qint64 milliseconds)
{
    const QTime time = QTime(0, 0).addMSecs(int(milliseconds));
    return time.toString(time.hour() > 0 ? QStringLiteral("h:mm:ss") : QStringLiteral("m:ss"));
}
