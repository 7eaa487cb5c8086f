#include "HostProgram.h"

#include "Demo.h"
#include "Look.h"
#include "ScriptRunner.h"
#include "mediaFiles.h"

#include <MediaPlayer/Plugin.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QFile>
#include <QtGui/QGuiApplication>

#include <cstdio>

HostProgram::HostProgram(const QString &theDescription) : description(theDescription)
{
    QGuiApplication::setPalette(look::palette());
}

int HostProgram::stopWith(int status, const QString &text)
{
    std::fprintf(status == 0 ? stdout : stderr, "%s\n", qPrintable(text));
    return status;
}

static void describe(QCommandLineParser &parser, const QString &description)
{
    parser.setApplicationDescription(description);
    parser.addPositionalArgument(QStringLiteral("media"),
                                 QStringLiteral("Files, folders, play lists or addresses to play."),
                                 QStringLiteral("[media...]"));
    parser.addOptions({
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("This text.")},
        {QStringLiteral("library"), QStringLiteral("The plug-in to load."), QStringLiteral("path"),
         MediaPlayer::pluginPath()},
        {QStringLiteral("script"),
         QStringLiteral("Run the commands in a file, or of standard input (-), and end."),
         QStringLiteral("file")},
        {QStringLiteral("demo"),
         QStringLiteral("Play the media to its end in steps, print what the record holds at each, "
                        "and end.")},
        {QStringLiteral("shot"), QStringLiteral("Where --demo writes a picture of the window."),
         QStringLiteral("file")},
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

int HostProgram::run(const MakeStage &makeStage, const MakeWindow &makeWindow)
{
    QCommandLineParser parser;
    describe(parser, description);
    if (!parser.parse(QCoreApplication::arguments()))
        return stopWith(2, parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        return stopWith(0, helpText(parser));
    stay = parser.isSet(QStringLiteral("stay"));

    PluginLibrary plugin;
    const QString library = parser.value(QStringLiteral("library"));
    if (const QString problem = plugin.load(library); !problem.isEmpty())
        return stopWith(2, problem);
    MediaPlayer::setPluginPath(library);
    writeSwitch(plugin.enableDebug, parser.isSet(QStringLiteral("trace")));

    if (parser.isSet(QStringLiteral("script")))
        return runScript(parser.value(QStringLiteral("script")), [&] { return makeStage(plugin); });
    QList<QUrl> media;
    for (const QString &name : parser.positionalArguments())
        media.append(urlOf(name));
    if (!parser.isSet(QStringLiteral("demo")))
        return play(media, makeWindow);
    if (media.size() != 1)
        return stopWith(2, QStringLiteral("--demo needs one file or address"));
    return runDemo(media[0], parser.value(QStringLiteral("shot")), makeWindow);
}

int HostProgram::play(const QList<QUrl> &media, const MakeWindow &makeWindow)
{
    Session session;
    const std::unique_ptr<HostWindow> window = makeWindow(session);
    if (!media.isEmpty())
        session.open(media);
    return QCoreApplication::exec();
}

int HostProgram::runDemo(const QUrl &media, const QString &shot, const MakeWindow &makeWindow)
{
    Session session;
    const std::unique_ptr<HostWindow> window = makeWindow(session);
    Demo demo(session, [&] {
        if (!shot.isEmpty() && !window->picture().save(shot))
            stopWith(1, QStringLiteral("the picture could not be written to %1").arg(shot));
    });
    QObject::connect(&demo, &Demo::finished, &demo,
                     [this](const QString &problem) { finish(problem); });
    demo.start(media);
    QCoreApplication::exec();
    return status;
}

int HostProgram::runScript(const QString &name,
                           const std::function<std::unique_ptr<Stage>()> &makeStage)
{
    QFile file(name);
    const bool isOpen =
        name == QLatin1String("-") ? file.open(stdin, QFile::ReadOnly) : file.open(QFile::ReadOnly);
    if (!isOpen)
        return stopWith(2, QStringLiteral("%1: %2").arg(name, file.errorString()));
    const Script script = Script::parse(name, QString::fromUtf8(file.readAll()));
    if (!script.problem.isEmpty())
        return stopWith(2, script.problem);
    {
        const std::unique_ptr<Stage> stage = makeStage();
        stage->addPlayer();
        ScriptRunner runner(*stage, script);
        QObject::connect(&runner, &ScriptRunner::finished, &runner,
                         [this](const QString &problem) { finish(problem); });
        runner.start();
        QCoreApplication::exec();
    }
    // The players' deletion was put off to a turn of the event loop that no longer comes.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return status;
}

void HostProgram::finish(const QString &problem)
{
    status = problem.isEmpty() ? 0 : stopWith(1, problem);
    if (!stay)
        QCoreApplication::exit(status);
}
