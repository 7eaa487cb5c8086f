#ifndef TIMELINE_H
#define TIMELINE_H

#include "Screen.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <atomic>
#include <mutex>
#include <set>
#include <vector>

class QQuickWindow;

/// Notes when a picture passes the stages of its way: from GStreamer's own tracing hooks, whoever
/// has built the pipeline, and from the window that shows it. One per process.
class Timeline : public QObject
{
public:
    struct Entry {
        QString stage;
        Clock::time_point time;
    };

    /// The one stage that a subject is asked about once, however often its pipeline rises.
    static constexpr char loadReturns[] = "load returns";

    explicit Timeline(QQuickWindow *window);

    void start();

    /// What has been noted since the start. Of the frames that the window has drawn, only the last
    /// one that was swapped by then is in it.
    std::vector<Entry> stop(Clock::time_point shown);

    /// Notes a stage, the first time only until the next pipeline rises. Any thread.
    void note(const char *stage);

    void pipelineRises();
    void pipelineFalls();

private:
    void noteFrame(const char *stage);

    std::atomic_int rises = 0;
    std::mutex lock; ///< guards all below
    bool running = false;
    std::set<QString> seen;
    std::vector<Entry> entries;
    std::vector<Entry> frames;
};

#endif
