#include "Script.h"

#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <compare>

static bool isTime(const QString &text)
{
    bool isNumber = false;
    (text.endsWith(QLatin1Char('%')) ? text.chopped(1) : text).toDouble(&isNumber);
    return isNumber;
}

std::optional<Condition> Condition::parse(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\w+)(<=|>=|!=|=|<|>)(.*)$"));
    const QRegularExpressionMatch match = pattern.match(text);
    const RecordField *field = RecordField::named(match.captured(1));
    if (!field)
        return {};
    const bool numeric = field->kind != RecordField::Text && field->kind != RecordField::State;
    const QString comparison = match.captured(2);
    const bool ordered =
        comparison.contains(QLatin1Char('<')) || comparison.contains(QLatin1Char('>'));
    if (numeric ? !isTime(match.captured(3)) : ordered)
        return {};
    return Condition {field, comparison, match.captured(3)};
}

static bool compare(const QString &comparison, std::partial_ordering order)
{
    if (comparison == QLatin1String("="))
        return std::is_eq(order);
    if (comparison == QLatin1String("!="))
        return std::is_neq(order);
    if (comparison == QLatin1String("<"))
        return std::is_lt(order);
    if (comparison == QLatin1String("<="))
        return std::is_lteq(order);
    return comparison == QLatin1String(">") ? std::is_gt(order) : std::is_gteq(order);
}

bool Condition::holds(MediaPlayerParams &record) const
{
    const QVariant value = field->value(record);
    if (field->kind == RecordField::Text || field->kind == RecordField::State)
        return compare(comparison, value.toString().compare(expected) <=> 0);
    if (!expected.endsWith(QLatin1Char('%')))
        return compare(comparison, value.toDouble() <=> expected.toDouble());
    const double duration = double(readShared(record.duration)) / 1e9;
    return duration > 0
        && compare(comparison,
                   value.toDouble() <=> expected.chopped(1).toDouble() / 100 * duration);
}

QString Condition::found(MediaPlayerParams &record) const
{
    return QStringLiteral("%1 is %2").arg(QLatin1String(field->name), field->text(record));
}

static bool fits(const QString &argument, const QString &wanted)
{
    bool isNumber = false;
    argument.toDouble(&isNumber);
    if (wanted == QLatin1String("NUMBER"))
        return isNumber;
    if (wanted == QLatin1String("TIME"))
        return isTime(argument);
    if (wanted == QLatin1String("ON"))
        return argument == QLatin1String("on") || argument == QLatin1String("off");
    return true;
}

static bool fitConditions(QStringList arguments, bool mayEndInTimeout)
{
    if (mayEndInTimeout && arguments.size() > 1 && fits(arguments.last(), QStringLiteral("NUMBER")))
        arguments.removeLast();
    return !arguments.isEmpty()
        && std::all_of(arguments.cbegin(), arguments.cend(),
                       [](const QString &text) { return Condition::parse(text).has_value(); });
}

static bool fitAll(const ScriptCommand &command, const QStringList &arguments)
{
    const QStringList wanted =
        QString::fromLatin1(command.arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (wanted.value(0) == QLatin1String("CONDITION..."))
        return fitConditions(arguments, wanted.size() > 1);
    const auto needed = std::count_if(wanted.cbegin(), wanted.cend(), [](const QString &word) {
        return !word.startsWith(QLatin1Char('['));
    });
    if (arguments.size() < needed || arguments.size() > wanted.size())
        return false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (!fits(arguments[i], wanted[i]))
            return false;
    }
    return true;
}

static QString parseLine(ScriptLine &line)
{
    QStringList words = QProcess::splitCommand(line.text);
    const QString name = words.takeFirst();
    const auto commands = ScriptCommand::all();
    const auto command = std::find_if(commands.begin(), commands.end(), [&name](const auto &c) {
        return name == QLatin1String(c.name);
    });
    if (command == commands.end())
        return QStringLiteral("there is no command \"%1\"").arg(name);
    line.command = &*command;
    line.arguments = words;
    if (fitAll(*command, words))
        return {};
    return QStringLiteral("\"%1\" is written: %1 %2").arg(name, QLatin1String(command->arguments));
}

Script Script::parse(const QString &name, const QString &text)
{
    Script script {name, {}, {}};
    int number = 0;
    for (const QString &raw : text.split(QLatin1Char('\n'))) {
        ++number;
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        script.lines.append({number, line, nullptr, {}});
        const QString problem = parseLine(script.lines.last());
        if (!problem.isEmpty()) {
            script.problem = QStringLiteral("%1:%2: %3").arg(name).arg(number).arg(problem);
            break;
        }
    }
    return script;
}

QString Script::help()
{
    QString text;
    for (const ScriptCommand &command : ScriptCommand::all()) {
        const QString usage =
            QLatin1String(command.name) + QLatin1Char(' ') + QLatin1String(command.arguments);
        text += QStringLiteral("  %1 %2\n").arg(usage, -32).arg(QLatin1String(command.help));
    }
    return text;
}
