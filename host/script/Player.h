#ifndef PLAYER_H
#define PLAYER_H

#include "BasicWidget.h"
#include "RecordField.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QQueue>
#include <QtCore/QRect>
#include <QtCore/QTimer>

#include <functional>
#include <memory>

/// One media player of the plug-in as a Qt object, straight on its record: for scripts and for the
/// endurance run, which must be able to do what the client library keeps its users from.
///
/// It owns the record, sends one command at a time, polls what the plug-in publishes, and makes,
/// hides and destroys the native control. It knows nothing of windows and items: whoever has a
/// place for the picture hands over a function that makes a control there. All of it belongs to
/// the GUI thread. Times are seconds.
class Player : public QObject
{
    Q_OBJECT

public:
    /// Makes a control where the host wants the picture, or returns null.
    using ControlFactory = std::function<BasicWidget *()>;

    explicit Player(QObject *parent = nullptr);

    /// A record whose player in the plug-in still lives is left to the process: the plug-in goes
    /// on using it. end() is the way to leave nothing behind.
    ~Player() override;

    // The control. Without a factory nothing is created.
    void setControlFactory(ControlFactory factory);
    void createControl();
    void destroyControl();
    void showControl(bool show);
    void moveControl(const QRect &place);
    bool hasControl() const { return !control.isNull(); }
    bool isShown() const { return hasControl() && shown; }

    /// Ends the player in the plug-in: shows the picture if it is parked, emits placeReleased(),
    /// whereupon the host deletes the widget or the item with the picture in it, and deletes this
    /// object when the plug-in has let go of the record.
    void end();

    // Commands. A command waits until the one before it is answered.
    bool load(const QString &uri); ///< false and refused() if it is too long
    void loadAndPlay(const QString &uri); ///< plays when the first frame is there
    void play() { setPlayState(MediaPlayerStatePlaying); }
    void pause() { setPlayState(MediaPlayerStatePaused); }
    void stop() { setPlayState(MediaPlayerStateNull); } ///< to a paused start
    void seek(double seconds);
    void setTransform(int flips, int angle); ///< MediaPlayerFlip bits; degrees
    void setCrop(int left, int top, int right, int bottom);
    void setVolume(double linear);
    void setMuted(bool muted);
    void setOpacity(double opacity);
    void setKeepAspect(bool keep);
    void request(int command); ///< any other code, with the operands the record has

    // Read by the plug-in when it parks and restores the picture; no command is needed.
    void setPauseOnHide(bool pause);
    void setResumeOnShow(bool resume);

    // What the plug-in published, as of the last poll.
    int state() const { return seen.state; }
    bool isPlaying() const { return seen.state == MediaPlayerStatePlaying; }
    double position() const { return double(seen.position) / 1e9; }
    double duration() const { return double(seen.duration) / 1e9; }
    bool hasFailed() const { return seen.error; }
    bool isAttached() const { return seen.attached; }
    bool isAlive() const { return record->view != nullptr; } ///< there is somebody to command
    bool isIdle() const { return !running && waiting.isEmpty(); }

    // What was asked for.
    QString uri() const { return currentUri; }
    double volume() const { return record->volume; }
    bool isMuted() const { return record->mute != 0; }
    double opacity() const { return record->opacity; }
    bool keepsAspect() const { return record->keepAspectRatio != 0; }
    int flips() const { return record->transformBit0 + 2 * record->transformBit1; }
    int angle() const { return record->transformParam; }
    QList<int> crop() const;
    bool pausesOnHide() const { return record->pauseOnSave != 0; }
    bool resumesOnShow() const { return record->resumeOnRestore != 0; }

    /// For looking at; read what the plug-in publishes with readShared().
    MediaPlayerParams &fields() const { return *record; }

Q_SIGNALS:
    void polled(); ///< after every look at the record
    void published(); ///< something that the plug-in publishes has changed
    void answered(int command, bool done, bool error);
    void refused(const QString &reason); ///< load() could not put the address into the record
    void ended(); ///< the media played to its end; it is paused at its start again
    void placeReleased(); ///< see end()
    void uriChanged();
    void settingsChanged();
    void controlChanged();

private:
    struct Request {
        int command;
        std::function<void()> writeOperands; ///< null: they are in the record already
    };
    struct Published {
        int state = 0;
        qint64 position = 0;
        qint64 duration = 0;
        bool done = false;
        bool error = false;
        bool attached = false;
        bool alive = false;
        bool operator==(const Published &) const = default;
    };

    void setPlayState(int state);
    void changeSetting(int command);
    void enqueue(int command, std::function<void()> writeOperands = {});
    void reapplySettings();
    void writeFileName(const QByteArray &text);
    void poll();
    void startNext();
    void finishCommand();
    void abandonCommands();
    void readPublished();
    void playWhenReady();
    void noticeEnd(const Published &before);
    void continueEnding();

    std::unique_ptr<MediaPlayerParams> record;
    QPointer<BasicWidget> control;
    ControlFactory makeControl;
    QTimer pollTimer;
    QQueue<Request> waiting;
    QList<int> changedSettings;
    Published seen;
    QString currentUri;
    int wantedState = MediaPlayerStatePaused;
    bool playWhenPaused = false;
    bool running = false; ///< `execute` was raised and has not been seen lowered
    bool shown = true;
    bool ending = false;
    bool released = false;
};

#endif
