#ifndef SESSION_H
#define SESSION_H

#include "Commands.h"
#include "Developer.h"
#include "Memory.h"
#include "PlayList.h"

#include <MediaPlayer/Player.h>

#include <QtCore/QPoint>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <memory>

class QScreen;
class QWindow;

/// What both hosts are: a player with its list, what is remembered, and what is to be shown. A
/// host's interface shows the properties, and calls the methods and the commands.
class Session : public QObject
{
    Q_OBJECT
    Q_PROPERTY(MediaPlayer::Player *player READ player CONSTANT)
    Q_PROPERTY(PlayList *list READ list CONSTANT)
    Q_PROPERTY(Developer *developer READ developer CONSTANT)
    Q_PROPERTY(Commands *commands READ commands CONSTANT)
    Q_PROPERTY(QStringList recent READ recent NOTIFY recentChanged)
    Q_PROPERTY(QUrl folder READ folder NOTIFY recentChanged)
    Q_PROPERTY(QStringList fileFilters READ fileFilters CONSTANT)
    Q_PROPERTY(QColor warning READ warning CONSTANT)

    // What plays.
    Q_PROPERTY(QString title READ title NOTIFY mediaChanged)
    Q_PROPERTY(QString artist READ artist NOTIFY mediaChanged)
    Q_PROPERTY(QString caption READ caption NOTIFY mediaChanged)
    Q_PROPERTY(bool soundOnly READ isSoundOnly NOTIFY mediaChanged)
    Q_PROPERTY(int coverSerial READ coverSerial NOTIFY mediaChanged)
    Q_PROPERTY(QString times READ times NOTIFY timesChanged)
    Q_PROPERTY(double place READ place NOTIFY timesChanged)
    Q_PROPERTY(double volume READ volume NOTIFY volumeChanged)
    Q_PROPERTY(double fullVolume READ fullVolume CONSTANT)

    // What is told: big and to stay, or for a while.
    Q_PROPERTY(QString headline READ headline NOTIFY told)
    Q_PROPERTY(QString details READ details NOTIFY told)
    Q_PROPERTY(QString notice READ notice NOTIFY told)
    Q_PROPERTY(bool warns READ warns NOTIFY told)

    // What is shown of the interface.
    Q_PROPERTY(bool fullScreen READ isFullScreen WRITE setFullScreen NOTIFY shownChanged)
    Q_PROPERTY(bool controlsShown READ areControlsShown NOTIFY shownChanged)
    Q_PROPERTY(bool listShown READ isListShown WRITE setListShown NOTIFY shownChanged)
    Q_PROPERTY(
        bool developerShown READ isDeveloperShown WRITE setDeveloperShown NOTIFY shownChanged)

public:
    Session();
    ~Session() override;

    MediaPlayer::Player *player() { return &thePlayer; }
    PlayList *list() { return &theList; }
    Developer *developer() { return &theDeveloper; }
    Commands *commands() { return theCommands.get(); }
    Memory &memory() { return theMemory; }
    QStringList recent() const; ///< the names of what was opened last
    Q_INVOKABLE void openRecent(int row);
    static QStringList fileFilters(); ///< of a file dialog
    static QColor warning(); ///< the colour for what is too loud or went wrong
    QUrl folder() const; ///< where a user is likely to look for the next

    QString title() const { return theList.title(theList.current()); }
    QString artist() const;
    QString caption() const; ///< of both what is known
    bool isSoundOnly() const;
    QImage cover() const { return theCover; }
    int coverSerial() const { return theCover.isNull() ? 0 : serial; } ///< 0: there is none
    QString times() const;
    double place() const; ///< 0 to 1 of the duration
    Q_INVOKABLE QString timeAt(double part) const; ///< as on a clock
    double volume() const; ///< 0 to 1 of the loudest
    double fullVolume() const; ///< above it, sound is made louder than it is
    Q_INVOKABLE QString volumeAt(double part) const; ///< in percent of the full volume

    QString headline() const;
    QString details() const;
    QString notice() const { return theNotice; }
    bool warns() const { return noticeWarns; } ///< the notice is of something that went wrong

    bool isFullScreen() const { return fullScreen; }
    void setFullScreen(bool on);
    bool areControlsShown() const { return controlsShown; }
    bool isListShown() const { return listShown; }
    void setListShown(bool on);
    bool isDeveloperShown() const { return developerShown; }
    void setDeveloperShown(bool on);

    /// Shows the controls for a while, whenever the user moves; see watch().
    void touch();

    QSize firstSize(const QScreen &screen) const; ///< of the window: as it was, if it fits

    /// Remembers the size of the window, and follows the pointer in it.
    void watch(QWindow *window);

    Q_INVOKABLE void open(const QList<QUrl> &urls); ///< appends what they stand for, and plays it
    Q_INVOKABLE void openTyped(const QString &address);
    Q_INVOKABLE void playRow(int row);
    Q_INVOKABLE void removeRow(int row);
    Q_INVOKABLE void togglePlaying();
    Q_INVOKABLE void seekTo(double part);
    void changeVolume(int steps);
    Q_INVOKABLE void turnWheel(int delta); ///< upwards, in eighths of a degree: changes the volume
    Q_INVOKABLE void setVolume(double part);
    void toggleMuted();
    void seekBy(qint64 milliseconds);
    void next() { playRow(theList.current() + 1); }
    void previous() { playRow(theList.current() - 1); }

Q_SIGNALS:
    void mediaChanged();
    void timesChanged();
    void volumeChanged();
    void told();
    void shownChanged();
    void recentChanged();

protected:
    bool eventFilter(QObject *window, QEvent *event) override;

private:
    void followPlayer();
    void watchIdle();
    void failed();
    void statusChanged();
    void metaDataChanged();
    void leaveMedia();
    void tell(const QString &text, bool warns = false);

    Memory theMemory;
    PlayList theList;
    MediaPlayer::Player thePlayer;
    Developer theDeveloper;
    QImage theCover;
    int serial = 0;
    int wheel = 0; ///< what it has been turned beyond the last step of the volume
    QString theNotice;
    QTimer noticeEnd;
    QTimer idle; ///< since the user moved
    QTimer slow; ///< since a medium began to load
    QPointer<QWindow> watched;
    QPoint pointer; ///< where it was last
    bool noticeWarns = false;
    bool fullScreen = false;
    bool controlsShown = true;
    bool listShown = false;
    bool developerShown = false;
    std::unique_ptr<Commands> theCommands; // reads all of the others
};

QString clockText(qint64 milliseconds);

#endif
