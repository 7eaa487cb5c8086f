#ifndef HOSTPROGRAM_H
#define HOSTPROGRAM_H

#include "Session.h"
#include "Stage.h"

#include <functional>

/// A host's interface to a session.
class HostWindow
{
public:
    HostWindow() = default;
    HostWindow(const HostWindow &) = delete;
    HostWindow &operator=(const HostWindow &) = delete;
    virtual ~HostWindow() = default;

    virtual QImage picture() = 0; ///< of the window, as a user sees it
};

/// What both hosts do around their window: the command line, the plug-in, and what the command
/// line asks for.
class HostProgram
{
public:
    using MakeStage = std::function<std::unique_ptr<Stage>(const PluginLibrary &)>;
    using MakeWindow = std::function<std::unique_ptr<HostWindow>(Session &)>;

    /// After the application object.
    explicit HostProgram(const QString &description);

    /// Runs to the end of the program. Returns its exit status: 0, 1 when a script or the demo
    /// failed or was cut short, 2 when the program could not begin.
    int run(const MakeStage &makeStage, const MakeWindow &makeWindow);

private:
    static int stopWith(int status, const QString &text);
    static int play(const QList<QUrl> &media, const MakeWindow &makeWindow);
    int runDemo(const QUrl &media, const QString &shot, const MakeWindow &makeWindow);
    int runScript(const QString &name, const std::function<std::unique_ptr<Stage>()> &makeStage);
    void finish(const QString &problem);

    QString description;
    bool stay = false;
    int status = 1; // until what was asked for has come to its end
};

#endif
