#ifndef SCRIPTRUNNER_H
#define SCRIPTRUNNER_H

#include "Script.h"
#include "Stage.h"

#include <QtCore/QElapsedTimer>

#include <functional>

/// Runs a script on a stage, line by line. A line that gives a command waits for its answer; a
/// line that waits for something fails when it does not come in time.
class ScriptRunner : public QObject
{
    Q_OBJECT

public:
    ScriptRunner(Stage &stage, Script script);

    void start();

Q_SIGNALS:
    /// A problem is empty or names the line, what did not come, and what was there instead.
    void finished(const QString &problem);

public:
    // For the commands.

    Stage &stage;
    Player &player() { return *stage.player(); }
    double seconds(const QString &time); ///< "2.5", or "50%" of the duration

    /// The next line waits until `holds`, at most `seconds`; 0 stands for ten seconds more than
    /// the current media lasts. `what` and `found` tell what did not come and what there is.
    void waitFor(const QString &what, std::function<bool()> holds, double seconds = 0,
                 std::function<QString()> found = {});
    void waitForAnswer();
    void waitForConditions(const QStringList &conditions, double seconds);
    void fail(const QString &why);
    void report(const QString &label);
    void takePicture(const QString &file);
    void end();

private:
    struct Waiting {
        QString what;
        std::function<bool()> holds;
        std::function<QString()> found;
        double seconds = 0;
    };

    void advance();
    void checkWaiting();

    Script script;
    QTimer ticks;
    QElapsedTimer elapsed;
    std::optional<Waiting> waiting;
    qsizetype nextLine = 0;
    bool over = false;
    bool headerPrinted = false;
};

#endif
