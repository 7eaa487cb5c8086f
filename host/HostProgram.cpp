#include "HostProgram.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cstdio>

// Plays to the middle, pauses, goes back, plays on to the end, which rewinds to a paused start.
static Script demoScript(const QString &uri, const QString &picture)
{
    static const char *const lines[] = {
        "load %1",
        "expect error=0",
        "wait state=paused duration>0 30",
        "report loaded",
        "play",
        "wait state=playing",
        "report playing",
        "wait position>=50%",
        "report middle",
        "pause",
        "wait state=paused",
        "report paused",
        "shot %2",
        "seek 25%",
        "wait position<=26%",
        "report \"seek to 25%\"",
        "play",
        "wait state=playing",
        "report \"playing on\"",
        "wait position>=75%",
        "wait state=paused position<10%",
        "report \"at the end\"",
    };
    const auto quoted = [](QString text) {
        return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\"\""))
            + QLatin1Char('"');
    };
    QString text;
    for (const char *line : lines)
        text += QLatin1String(line) + QLatin1Char('\n');
    text.replace(QLatin1String("%1"), quoted(uri)).replace(QLatin1String("%2"), quoted(picture));
    return Script::parse(QStringLiteral("demo"), text);
}

HostProgram::HostProgram(const QString &theDescription) : description(theDescription) { }

bool HostProgram::stopWith(int status, const QString &text)
{
    std::fprintf(status == 0 ? stdout : stderr, "%s\n", qPrintable(text));
    exitStatus = status;
    return false;
}

static void describe(QCommandLineParser &parser, const QString &description)
{
    parser.setApplicationDescription(description);
    parser.addPositionalArgument(QStringLiteral("media"),
                                 QStringLiteral("Files or addresses to play."),
                                 QStringLiteral("[media...]"));
    parser.addOptions({
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("This text.")},
        {QStringLiteral("library"), QStringLiteral("The plug-in to load."), QStringLiteral("path"),
         PluginLibrary::defaultPath()},
        {QStringLiteral("script"),
         QStringLiteral("Run the commands in a file, or of standard input (-), and end."),
         QStringLiteral("file")},
        {QStringLiteral("demo"),
         QStringLiteral("Play the media to its end in steps, print what the player published at "
                        "each, and end.")},
        {QStringLiteral("shot"), QStringLiteral("Where --demo writes a picture of the window."),
         QStringLiteral("file"), QStringLiteral("mediaplayer-demo.png")},
        {QStringLiteral("stay"), QStringLiteral("Stay open after a script or the demo.")},
        {QStringLiteral("trace"), QStringLiteral("Trace lines of the library from the start.")},
    });
}

static QString helpText(const QCommandLineParser &parser)
{
    return parser.helpText()
        + QStringLiteral("\nScript commands, one a line; # begins a line of comment:\n")
        + Script::help()
        + QStringLiteral(
               "\nA condition compares a field of the record, as \"fields\" prints them, with\n"
               "= != < <= > or >=: state=paused, position>=2.5 (seconds), position<50% (of the\n"
               "duration). Without SECONDS a wait gives up ten seconds after the media could\n"
               "have played to its end.\n"
               "\nThe exit status is 0 when everything came that a script waited for, 1 when\n"
               "not, and 2 when the program could not begin.\n");
}

bool HostProgram::prepare()
{
    QCommandLineParser parser;
    describe(parser, description);
    if (!parser.parse(QCoreApplication::arguments()))
        return stopWith(2, parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        return stopWith(0, helpText(parser));

    media = parser.positionalArguments();
    stay = parser.isSet(QStringLiteral("stay"));
    if (parser.isSet(QStringLiteral("demo"))) {
        if (media.size() != 1)
            return stopWith(2, QStringLiteral("--demo needs one file or address"));
        script = demoScript(uriOf(media[0]), parser.value(QStringLiteral("shot")));
    } else if (parser.isSet(QStringLiteral("script"))
               && !readScript(parser.value(QStringLiteral("script")))) {
        return false;
    }

    const QString problem = plugin.load(parser.value(QStringLiteral("library")));
    if (!problem.isEmpty())
        return stopWith(2, problem);
    writeSwitch(plugin.enableDebug, parser.isSet(QStringLiteral("trace")));
    theSession = std::make_unique<Session>(plugin);
    theSession->addPlayer();
    if (!script) // scripts begin with what a new record means: a stretched picture
        theSession->player()->setKeepAspect(true);
    return true;
}

bool HostProgram::readScript(const QString &name)
{
    QFile file(name);
    const bool isOpen =
        name == QLatin1String("-") ? file.open(stdin, QFile::ReadOnly) : file.open(QFile::ReadOnly);
    if (!isOpen)
        return stopWith(2, QStringLiteral("%1: %2").arg(name, file.errorString()));
    script = Script::parse(name, QString::fromUtf8(file.readAll()));
    return script->problem.isEmpty() || stopWith(2, script->problem);
}

void HostProgram::begin(ScriptRunner::Resize resize, ScriptRunner::Grab grab)
{
    if (script)
        return runScript(std::move(resize), std::move(grab));
    QList<QUrl> urls;
    for (const QString &name : std::as_const(media))
        urls.append(QUrl(uriOf(name)));
    if (!urls.isEmpty())
        theSession->open(urls);
}

void HostProgram::runScript(ScriptRunner::Resize resize, ScriptRunner::Grab grab)
{
    exitStatus = 1; // until it has come to its end
    runner = std::make_unique<ScriptRunner>(*theSession, *script);
    runner->setWindow(std::move(resize), std::move(grab));
    connect(runner.get(), &ScriptRunner::finished, this, &HostProgram::scriptFinished);
    runner->start();
}

void HostProgram::scriptFinished(const QString &problem)
{
    if (problem.isEmpty())
        exitStatus = 0;
    else
        stopWith(1, problem);
    if (!stay)
        QCoreApplication::exit(exitStatus);
}
