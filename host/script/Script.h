#ifndef SCRIPT_H
#define SCRIPT_H

#include "RecordField.h"

#include <QtCore/QStringList>

#include <optional>
#include <span>

/// A comparison such as "state=paused", "position>=2.5" or "position<50%" (of the duration).
struct Condition {
    const RecordField *field = nullptr;
    QString comparison; ///< one of = != < <= > >=
    QString expected;

    static std::optional<Condition> parse(const QString &text);
    bool holds(MediaPlayerParams &record) const;
    QString text() const { return QLatin1String(field->name) + comparison + expected; }
    QString found(MediaPlayerParams &record) const; ///< "state is ready"
};

class ScriptRunner;

/// One command that a script can give. The arguments are described in words that are checked:
/// NUMBER, ON (on or off), TIME (seconds, or a percentage of the duration), CONDITION..., and
/// anything else is text; [X] may be left out.
struct ScriptCommand {
    const char *name;
    const char *arguments;
    const char *help;
    void (*run)(ScriptRunner &runner, const QStringList &arguments);

    static std::span<const ScriptCommand> all();
};

struct ScriptLine {
    int number;
    QString text;
    const ScriptCommand *command;
    QStringList arguments;
};

/// A script, or the first wrong line of it and why.
struct Script {
    QString name;
    QList<ScriptLine> lines;
    QString problem;

    static Script parse(const QString &name, const QString &text);
    static QString help();
};

#endif
