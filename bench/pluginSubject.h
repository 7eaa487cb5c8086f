#ifndef PLUGINSUBJECT_H
#define PLUGINSUBJECT_H

#include "BasicWidget.h"
#include "MediaPlayerParams.h"
#include "Subject.h"

#include <QtCore/QPointer>

/// The plug-in, as a host has it: loaded at run time, spoken to through its record.
class PluginSubject : public Subject
{
public:
    explicit PluginSubject(QQuickItem *host);
    ~PluginSubject() override;

    /// Loads the library. Once per process, before the first player.
    static void loadLibrary(const QString &path);

    /// The first file comes with the registration. Every other one is asked for the way the
    /// plug-in's own thread asks, a queued "updateValues", so no polling delay is in the figures.
    void open(const QString &uri) override;
    void play() override { playState(MediaPlayerStatePlaying); }
    void pause() override { playState(MediaPlayerStatePaused); }
    void playState(int state);

    /// The host's way: raises `execute`; the plug-in finds it at its next poll.
    void raise(int command);
    bool isAnswered() const;

    /// Runs a command to its end: raises it and keeps the event loop going until it is answered.
    void run(int command);

    void writeFileName(const QString &uri);
    void createControl();
    void show(bool wanted) { control->SysNativeControlShow(wanted ? 1 : 0); }
    void destroyControl();
    bool isAttached() const;

    MediaPlayerParams record {};

private:
    QPointer<QQuickItem> place;
    QPointer<BasicWidget> control;
};

#endif
