#include "ScriptRunner.h"

#include <cstdio>

using namespace std::chrono_literals;

constexpr auto tickInterval = 20ms;
constexpr double patience = 10; // seconds

ScriptRunner::ScriptRunner(Stage &theStage, Script theScript)
    : stage(theStage), script(std::move(theScript))
{
    connect(&ticks, &QTimer::timeout, this, &ScriptRunner::advance);
}

void ScriptRunner::start()
{
    waitFor(QStringLiteral("the first player"), [this] { return player().isAlive(); });
    ticks.start(tickInterval);
}

void ScriptRunner::advance()
{
    checkWaiting();
    while (!waiting && !over && nextLine < script.lines.size()) {
        const ScriptLine &line = script.lines[nextLine++];
        line.command->run(*this, line.arguments);
    }
    if (!waiting && !over)
        end();
}

void ScriptRunner::checkWaiting()
{
    if (!waiting)
        return;
    const Waiting line = *waiting; // a copy: what it calls may fail the script
    if (line.holds()) {
        waiting.reset();
        return;
    }
    if (double(elapsed.elapsed()) < line.seconds * 1000)
        return;
    fail(QStringLiteral("%1 did not come within %2 s%3")
             .arg(line.what)
             .arg(line.seconds, 0, 'f', 1)
             .arg(line.found ? QStringLiteral("; ") + line.found() : QString()));
}

void ScriptRunner::waitFor(const QString &what, std::function<bool()> holds, double seconds,
                           std::function<QString()> found)
{
    const double limit =
        seconds > 0 ? seconds : patience + (stage.player() ? player().duration() : 0);
    waiting = Waiting {what, std::move(holds), std::move(found), limit};
    elapsed.start();
}

void ScriptRunner::waitForAnswer()
{
    waitFor(QStringLiteral("the answer"), [this] { return player().isIdle(); });
}

void ScriptRunner::waitForConditions(const QStringList &texts, double seconds)
{
    QList<Condition> conditions;
    for (const QString &text : texts)
        conditions.append(*Condition::parse(text));
    const auto first = [this, conditions]() -> const Condition * {
        for (const Condition &condition : conditions) {
            if (!condition.holds(player().fields()))
                return &condition;
        }
        return nullptr;
    };
    waitFor(
        texts.join(QLatin1Char(' ')), [first, conditions] { return first() == nullptr; }, seconds,
        [this, conditions] {
            QStringList found;
            for (const Condition &condition : conditions)
                found.append(condition.found(player().fields()));
            return found.join(QStringLiteral(", "));
        });
}

double ScriptRunner::seconds(const QString &time)
{
    if (!time.endsWith(QLatin1Char('%')))
        return time.toDouble();
    return time.chopped(1).toDouble() / 100 * player().duration();
}

void ScriptRunner::report(const QString &label)
{
    if (!std::exchange(headerPrinted, true))
        std::printf("%s\n", qPrintable(reportHeader()));
    std::printf("%s\n", qPrintable(reportLine(label, player().fields())));
    std::fflush(stdout);
}

// The picture is taken after the players have been looked at twice, so that what the last line
// brought about is drawn.
void ScriptRunner::takePicture(const QString &file)
{
    auto looks = std::make_shared<int>(0);
    auto *counter = new QObject(this);
    connect(&player(), &Player::polled, counter, [looks] { ++*looks; });
    waitFor(QStringLiteral("a picture"), [this, file, looks, counter] {
        if (*looks < 2)
            return false;
        counter->deleteLater();
        const QImage image = stage.picture();
        if (image.isNull() || !image.save(file))
            fail(QStringLiteral("the picture could not be written to %1").arg(file));
        else
            std::printf("picture: %s\n", qPrintable(file));
        std::fflush(stdout);
        return true;
    });
}

void ScriptRunner::fail(const QString &why)
{
    waiting.reset();
    over = true;
    ticks.stop();
    const ScriptLine line = nextLine > 0 ? script.lines[nextLine - 1]
                                         : ScriptLine {0, QStringLiteral("(start)"), nullptr, {}};
    Q_EMIT finished(
        QStringLiteral("%1:%2: %3: %4").arg(script.name).arg(line.number).arg(line.text, why));
}

void ScriptRunner::end()
{
    over = true;
    ticks.stop();
    Q_EMIT finished({});
}
