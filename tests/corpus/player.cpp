// corpus_player widget|quick URI: plays one file as a host does. Ten times a second from its first
// frame on it writes where it is and what it lasts, in seconds, and every new word of an error.

#include "tests/fixture.h"

#include <QtWidgets/QApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    if (argc != 3)
        return 2;
    std::setbuf(stdout, nullptr);
    Host host(qstrcmp(argv[1], "quick") == 0 ? Host::Quick : Host::Widget, {640, 480});
    host.open({});
    host.load(argv[2]);

    std::uint32_t run = 0; // 0 until the first frame
    QString told;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &application, [&] {
        QString words = host.view()->property("errorText").toString();
        if (host.record.error)
            words += QStringLiteral(" error: ") + host.overlay();
        if (words != told)
            std::printf("W=%s\n", qPrintable(told = words));
        if (run == 0 && host.state() == GST_STATE_PAUSED) {
            run = generationOf(host.view());
            host.play(GST_STATE_PLAYING);
        }
        if (run == 0)
            return;
        std::printf("S=%.2f D=%.2f\n", double(host.position()) / GST_SECOND,
                    double(host.duration()) / GST_SECOND);
        if (generationOf(host.view()) > run + 1) { // an end goes through READY and NULL
            std::puts("E=");
            tick.stop();
        }
    });
    tick.start(100);
    return application.exec();
}
