#ifndef BENCH_H
#define BENCH_H

#include "Screen.h"
#include "Subject.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtQuick/QQuickWindow>

#include <functional>

/// What the command line says.
struct Setup {
    QString subject; ///< "plugin", "client", "bare" or "qt"
    QString library;
    QString media; ///< folder with the files of bench/media
    QString measure;
    int size = 0; ///< picture height, or how many players or files
    int rounds = 0;
    double seconds = 0;
};

/// The bench's window, with places for subjects in it.
class Stage
{
public:
    explicit Stage(const Setup &setup);

    /// Makes a subject of the set-up's kind in place `index` of a grid of `count`.
    std::unique_ptr<Subject> addSubject(int index = 0, int count = 1);
    QRect place(int index, int count) const;

    QString file(const QString &name) const;

    const Setup &setup;
    QQuickWindow window;
    Screen screen;
};

[[noreturn]] void fail(const QString &why);

/// Keeps the event loop going until `arrived` holds; fails the process after ten seconds.
void await(const char *what, const std::function<bool()> &arrived);
void rest(double seconds);

double since(Clock::time_point start); ///< milliseconds
double processorSeconds(); ///< of the process, all threads
double memoryKiB(); ///< resident, after free memory has gone back to the system
int threadCount();
int descriptorCount();

// Each takes the stage and answers with its figures. Times are milliseconds.
QJsonObject measureLoads(Stage &stage);
QJsonObject measureTimeline(Stage &stage);
QJsonObject measurePlaying(Stage &stage);
QJsonObject measureMemory(Stage &stage);
QJsonObject measureCache(Stage &stage);
QJsonObject measureManyPlayers(Stage &stage);
QJsonObject measureCommands(Stage &stage);
QJsonObject measureParked(Stage &stage);
QJsonObject measureHolds(Stage &stage);
QJsonObject measureStart(Stage &stage);

#endif
