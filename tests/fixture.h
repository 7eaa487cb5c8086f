#ifndef FIXTURE_H
#define FIXTURE_H

#include "await.h"
#include "boundary/AtomicAccess.h"
#include "boundary/MediaPlayerControl.h"
#include "boundary/MediaPlayerParams.h"
#include "diagnostics/MediaPlayerDiagnostics.h"
#include "view/MediaPlayerView.h"

#include <QtQuickWidgets/QQuickWidget>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>

/// The answers of a command as Host::run() gives them: done, error and busy; 2 is left as it was.
inline const QByteArray complete = "100";
inline const QByteArray failed = "010";
inline const QByteArray unanswered = "222";

/// A host of one player: its window, its control, and its record, used as hosts use them.
class Host
{
public:
    enum Kind { Widget, Quick };
    enum Start { Shown, Hidden };

    /// The host's ground is magenta, its picture covers all of the window.
    explicit Host(Kind kind, QSize size = {320, 240}, Start start = Shown);

    /// The host's window goes, and with it what it owns, and the record as soon as it may; then
    /// everything deferred is run.
    ~Host();

    void setShown(bool shown); ///< the window
    void create(); ///< a new control; in a Qt Quick host under a new item
    void registerRecord() { registerRecord(record); }
    void registerRecord(MediaPlayerParams &params);
    void destroyControl() { control->SysNativeControlDestroy(); }

    /// Unmaps the record, as a host may free it. False while a player still serves it.
    bool giveBackRecord();

    void open(const QByteArray &uri); ///< create(), registerRecord(), SysNativeControlShow(1)
    void raise(int command); ///< `execute`, for a command that is not waited for
    QByteArray run(int command); ///< raises `execute` and waits for the answer
    QByteArray load(const QByteArray &uri);
    QByteArray play(int state);

    void setFileName(const QByteArray &text); ///< up to 81 bytes; the rest of the field is kept
    int state() { return loadRelaxed(record.state); }
    qint64 position() { return loadRelaxed(record.position); }
    qint64 duration() { return loadRelaxed(record.duration); }
    QVariant told(const char *name) { return view()->property(name); } ///< beside the record
    MediaPlayerView *view() { return m_recordGone ? nullptr : record.view; }
    QQuickItem *place(); ///< the item that the picture of the newest control goes into
    QQuickItem *videoItem();

    /// Whether the bytes of the record that belong to nobody still hold what they were filled with.
    bool strayBytesKept() const;

    /// What the screen shows in the middle of the four quarters, row by row: R, G, B, W, Y,
    /// M (the host's ground), or ? for anything else.
    QByteArray picture();

    QString overlay(); ///< the text over the picture; empty while it shows none
    QList<int> pipelineStates(); ///< of all that are built, the current one first

    const Kind kind;
    std::unique_ptr<QWidget> widget;
    std::unique_ptr<QQuickWindow> window;
    QPointer<QQuickItem> item; ///< the host's item of a Qt Quick host
    QPointer<BasicWidget> control;
    MediaPlayerParams &record; ///< lies at the very end of the memory that may be touched

private:
    bool m_recordGone = false;
};

/// Adds the column "kind" with a row for each.
void addKinds();

/// The URI of one of the files that tests/make-media makes.
QByteArray media(const char *name);

/// Goes up whenever the view's media is moved: with every way down to READY or NULL, every seek and
/// every switch.
std::uint32_t generationOf(MediaPlayerView *view);

/// How many entries a folder has: /proc/self/fd and /proc/self/task tell what a process holds.
qint64 entriesOf(const char *folder);

/// Keeps the GUI thread from its event loop until the condition is true, or gives up.
bool blockUntil(const std::function<bool()> &condition);

/// Blocks the GUI thread for a pass of the player's thread, from its start to its publication.
/// Needs an active pipeline.
bool blockForOnePass(Host &host);

/// What the process writes to a stream of its own, such as STDOUT_FILENO, while this object lives.
class Captured
{
public:
    explicit Captured(int stream);
    ~Captured();
    QByteArray text();

private:
    const int m_stream;
    const int m_before;
    QTemporaryFile m_file;
};

/// Runs the test's functions in an application that a host could be, and then looks for GStreamer
/// objects that are left. Criticals of GLib end the process, and so does a leak.
int runPlayerTest(int argc, char **argv, const std::function<int(int, char **)> &test);

#define PLAYER_TEST_MAIN(TestClass)                                                                \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        return runPlayerTest(argc, argv, [](int count, char **values) {                            \
            TestClass test;                                                                        \
            return QTest::qExec(&test, count, values);                                             \
        });                                                                                        \
    }

#endif
