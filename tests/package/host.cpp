// A host as somebody else would write it: plays the first second of a medium.
#include <BasicWidget.h>
#include <MediaPlayerFactories.h>
#include <MediaPlayerParams.h>

#include <QtCore/QLibrary>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <atomic>
#include <cstring>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QLibrary library(QStringLiteral(PLUGIN));
    const auto create = reinterpret_cast<MediaPlayerCreate>(library.resolve("Create"));
    if (!create || argc != 2)
        qFatal("%s", qPrintable(library.errorString()));
    QWidget window;
    window.resize(320, 240);
    window.show();
    MediaPlayerParams record = {};
    record.volume = record.opacity = 1;
    std::strncpy(record.fileName, argv[1], sizeof record.fileName - 1);
    char key[] = "RegisterParameter";
    BasicWidget *control = create(&window, 0, 0, 319, 239);
    control->SysNativeControlSetSettings(key, &record);
    control->SysNativeControlShow(1);

    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        const int state = std::atomic_ref(record.state).load();
        if (state == MediaPlayerStatePlaying && std::atomic_ref(record.position).load() > 1e9)
            application.quit();
        if (state != MediaPlayerStatePaused || std::atomic_ref(record.execute).load())
            return;
        record.command = MediaPlayerCommandPlayState;
        record.playState = MediaPlayerStatePlaying;
        std::atomic_ref(record.execute).store(1);
    });
    poll.start(20);
    QTimer::singleShot(30000, [] { QCoreApplication::exit(2); });
    return QApplication::exec();
}
