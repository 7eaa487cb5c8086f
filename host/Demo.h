#ifndef DEMO_H
#define DEMO_H

#include "Session.h"

#include <QtCore/QElapsedTimer>

/// Walks through what a player can be told: plays to the middle, pauses, goes back, and plays on to
/// the end. After each step it prints what the record holds.
class Demo : public QObject
{
    Q_OBJECT

public:
    /// `picture` is called in the middle, when what is shown stands still.
    Demo(Session &session, std::function<void()> picture);

    void start(const QUrl &media);

Q_SIGNALS:
    /// A problem is empty, or tells which step did not come, or why the medium cannot be played.
    void finished(const QString &problem);

private:
    struct Step {
        const char *label;
        bool (Demo::*hasCome)() const;
        void (Demo::*next)(); ///< what is told to do after it
    };

    static const QList<Step> &steps();
    void look();
    void end(const QString &problem);

    bool isLoaded() const;
    bool plays() const;
    bool isInMiddle() const;
    bool isPaused() const;
    bool isBack() const;
    bool playsOn() const;
    bool isAtEnd() const;
    void play() { player.play(); }
    void pause() { player.pause(); }
    void goBack();
    void wait() { }

    Session &session;
    MediaPlayer::Player &player;
    std::function<void()> takePicture;
    QTimer looks;
    QElapsedTimer elapsed; ///< since the last step
    qsizetype step = 0;
};

#endif
