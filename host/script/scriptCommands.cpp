// Every command that a script can give, in the order in which --help lists them.

#include "ScriptRunner.h"

#include <cstdio>

static bool isOn(const QStringList &a)
{
    return a[0] == QLatin1String("on");
}

static int number(const QString &text)
{
    return int(text.toDouble());
}

static void load(ScriptRunner &run, const QStringList &a)
{
    if (run.player().load(uriOf(a[0])))
        run.waitForAnswer();
    else
        run.fail(run.stage.refusal());
}

static void openMedia(ScriptRunner &run, const QStringList &a)
{
    run.stage.open(uriOf(a[0]));
    run.waitForAnswer();
}

static void wait(ScriptRunner &run, const QStringList &a)
{
    bool hasTimeout = false;
    const double seconds = a.last().toDouble(&hasTimeout);
    run.waitForConditions(hasTimeout ? a.first(a.size() - 1) : a, hasTimeout ? seconds : 0);
}

static void expect(ScriptRunner &run, const QStringList &a)
{
    for (const QString &text : a) {
        const Condition condition = *Condition::parse(text);
        if (!condition.holds(run.player().fields()))
            return run.fail(QStringLiteral("expected %1, but %2")
                                .arg(text, condition.found(run.player().fields())));
    }
}

static void selectPlayer(ScriptRunner &run, const QStringList &a)
{
    run.stage.setCurrent(number(a[0]) - 1);
    if (run.stage.current() != number(a[0]) - 1)
        run.fail(QStringLiteral("there is no such player"));
}

static void addPlayer(ScriptRunner &run, const QStringList &)
{
    run.stage.addPlayer();
    run.waitFor(QStringLiteral("the new player"), [&run] { return run.player().isAlive(); });
}

static void removePlayer(ScriptRunner &run, const QStringList &)
{
    if (run.stage.count() == 1)
        return run.fail(QStringLiteral("the last player stays"));
    const QPointer<Player> leaving = &run.player();
    run.stage.removePlayer();
    run.waitFor(QStringLiteral("the end of the player"), [leaving] { return !leaving; });
}

static void printFields(ScriptRunner &run, const QStringList &)
{
    for (const RecordField &field : RecordField::all()) {
        std::printf("%-16s %s\n", field.name, qPrintable(field.text(run.player().fields())));
    }
    std::fflush(stdout);
}

template <auto Operation>
static void command(ScriptRunner &run, const QStringList &)
{
    (run.player().*Operation)();
    run.waitForAnswer();
}

template <auto Operation>
static void commandOn(ScriptRunner &run, const QStringList &a)
{
    (run.player().*Operation)(isOn(a));
    run.waitForAnswer();
}

using Args = const QStringList &;
using Run = ScriptRunner &;

std::span<const ScriptCommand> ScriptCommand::all()
{
    static const ScriptCommand commands[] = {
        {"load", "URI", "loads a media address, or a file by its path", load},
        {"open", "URI", "appends it to the play list and plays it, as a user does", openMedia},
        {"entry", "NUMBER", "plays that entry of the play list; the first is 1",
         [](Run r, Args a) { r.stage.playEntry(number(a[0]) - 1); }},
        {"play", "", "plays", command<&Player::play>},
        {"pause", "", "pauses", command<&Player::pause>},
        {"stop", "", "goes back to a paused start", command<&Player::stop>},
        {"seek", "TIME", "goes to the key frame before 2.5 (seconds) or 50%",
         [](Run r, Args a) {
             r.player().seek(r.seconds(a[0]));
             r.waitForAnswer();
         }},
        {"volume", "NUMBER", "1 leaves the level as it is",
         [](Run r, Args a) {
             r.player().setVolume(a[0].toDouble());
             r.waitForAnswer();
         }},
        {"mute", "ON", "on or off", commandOn<&Player::setMuted>},
        {"crop", "NUMBER NUMBER NUMBER NUMBER", "left, top, right, bottom, in pixels",
         [](Run r, Args a) {
             r.player().setCrop(number(a[0]), number(a[1]), number(a[2]), number(a[3]));
             r.waitForAnswer();
         }},
        {"opacity", "NUMBER", "0 to 1",
         [](Run r, Args a) {
             r.player().setOpacity(a[0].toDouble());
             r.waitForAnswer();
         }},
        {"transform", "NUMBER NUMBER", "flips (1 left-right, 2 top-bottom, 3 both), degrees",
         [](Run r, Args a) {
             r.player().setTransform(number(a[0]), number(a[1]));
             r.waitForAnswer();
         }},
        {"aspect", "ON", "on keeps the picture's shape, off stretches it",
         commandOn<&Player::setKeepAspect>},
        {"command", "NUMBER", "any command code, with the operands of the record",
         [](Run r, Args a) {
             r.player().request(number(a[0]));
             r.waitForAnswer();
         }},
        {"hide", "", "hides the control; the picture is parked",
         [](Run r, Args) { r.player().showControl(false); }},
        {"show", "", "shows it", [](Run r, Args) { r.player().showControl(true); }},
        {"destroy", "", "destroys the control", [](Run r, Args) { r.player().destroyControl(); }},
        {"create", "", "makes a control if there is none",
         [](Run r, Args) { r.player().createControl(); }},
        {"recreate", "", "destroys the control and makes another",
         [](Run r, Args) {
             r.player().destroyControl();
             r.player().createControl();
         }},
        {"pause-on-hide", "ON", "whether hiding pauses",
         [](Run r, Args a) { r.player().setPauseOnHide(isOn(a)); }},
        {"resume-on-show", "ON", "whether showing resumes what hiding paused",
         [](Run r, Args a) { r.player().setResumeOnShow(isOn(a)); }},
        {"add", "", "adds a player, which becomes the current one", addPlayer},
        {"remove", "", "ends the current player", removePlayer},
        {"player", "NUMBER", "makes that player the current one; the first is 1", selectPlayer},
        {"wait", "CONDITION... [SECONDS]", "waits for fields of the record", wait},
        {"expect", "CONDITION...", "fails unless they are so now", expect},
        {"report", "LABEL", "prints a line of what the record holds",
         [](Run r, Args a) { r.report(a[0]); }},
        {"fields", "", "prints the whole record", printFields},
        {"shot", "FILE", "writes a picture of the window",
         [](Run r, Args a) { r.takePicture(a[0]); }},
        {"size", "NUMBER NUMBER", "width and height of the window",
         [](Run r, Args a) {
             r.stage.resize({number(a[0]), number(a[1])});
         }},
        {"trace", "ON", "trace lines of the library on standard output",
         [](Run r, Args a) { r.stage.setTrace(isOn(a)); }},
        {"workaround", "ON", "a player of a widget host outlives its control",
         [](Run r, Args a) { r.stage.setWorkaround(isOn(a)); }},
        {"quit", "", "ends the script here", [](Run r, Args) { r.end(); }},
    };
    return commands;
}
