#ifndef HOSTPROGRAM_H
#define HOSTPROGRAM_H

#include "ScriptRunner.h"

/// What both hosts do around their window: the command line, the plug-in, the session, and the
/// script that the command line asks for.
class HostProgram : public QObject
{
    Q_OBJECT

public:
    explicit HostProgram(const QString &description);

    /// Reads the command line and loads the plug-in. False: the program ends with status().
    bool prepare();

    PluginLibrary &library() { return plugin; }
    Session &session() { return *theSession; }

    /// Call it when the window shows the first player: runs the script or opens the media.
    void begin(ScriptRunner::Resize resize, ScriptRunner::Grab grab);

    /// 0, 1 when a script failed or was cut short, 2 when the program could not begin.
    int status() const { return exitStatus; }

private:
    bool stopWith(int status, const QString &text);
    bool readScript(const QString &file);
    void runScript(ScriptRunner::Resize resize, ScriptRunner::Grab grab);
    void scriptFinished(const QString &problem);

    QString description;
    PluginLibrary plugin;
    std::unique_ptr<Session> theSession;
    std::unique_ptr<ScriptRunner> runner;
    std::optional<Script> script;
    QStringList media;
    bool stay = false;
    int exitStatus = 0;
};

#endif
