#ifndef MEDIAPLAYERVIEW_H
#define MEDIAPLAYERVIEW_H

#include "boundary/MediaPlayerParams.h"
#include "quirks/Quirks.h"

#include <gst/gst.h>

#include <QtCore/QHash>
#include <QtCore/QMetaType>
#include <QtCore/QPointer>
#include <QtCore/QSharedPointer>
#include <QtGui/QWindow>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickView>
#include <QtQuickWidgets/QQuickWidget>

#include <cstdint>
#include <functional>
#include <mutex>

class cThread;

/// The player behind one host record.
///
/// It owns the video object (the scene's root item), the current pipeline, one built pipeline per
/// media URI, and the thread that polls the record and the pipeline's bus. The window itself is
/// never shown: the class is a QQuickView so that a Qt Quick host's window can own it.
///
/// Every operation runs on the GUI thread unless it says otherwise. Its members are defined in the
/// folder of the subsystem they belong to: view/, pipeline/ and update/.
class MediaPlayerView : public QQuickView
{
    Q_OBJECT

public:
    /// One built pipeline. Plain pointers, null where the file has no use for the element or it
    /// could not be made; see releaseRecord() for who releases them.
    struct PipelineCtx {
        GstElement *pipeline = nullptr;
        GstElement *source = nullptr;
        GstElement *videoSink = nullptr;
        GstElement *glUpload = nullptr;
        GstElement *glColorConvert = nullptr;
        GstElement *audioSink = nullptr;
        GstElement *volumeElement = nullptr;
        QPointer<QQuickItem> videoItem;
        bool isVideo = false;
        bool prerolled = false; ///< by videoItemReady()
    };

    explicit MediaPlayerView(QWindow *hostWindow = nullptr, QQuickItem *hostItem = nullptr,
                             QObject *hostContext = nullptr);

    /// Takes the pipelines down and joins the thread. May wait for one sequence of state changes
    /// of the update thread, about three seconds at worst, and for a state change that a source
    /// or a sound server holds up.
    ~MediaPlayerView() override;

    void init();
    void initQuickWidget();

    /// Gives the view another host window and item. The video object follows at the next restore.
    void updateReferences(QWindow *hostWindow, QQuickItem *hostItem, QObject *hostContext);

    /// Initialises GStreamer; both arguments are ignored. Ends the process where GStreamer cannot
    /// be initialised, as gst_init does.
    void gstInit(int *argc, char ***argv);

    /// A new element with a floating reference, or null.
    GstElement *gstElementFactoryMake(const char *factory, const char *name);

    /// Handles one message of the bus, whatever pipeline it comes from, and releases it. Expects
    /// `lock` to be held; runs on the update thread.
    void handle_message(GstMessage *message);

    bool isVideoSurfaceReady() const;

    /// Applies the record's volume. The argument is not used.
    void updateSize(bool);

    // The order of the signals and slots is the order of the meta-object's methods.
Q_SIGNALS:
    void destruct();
    void videoSurfaceReadyChanged(bool ready);

public Q_SLOTS:
    void restore();
    bool saveObject();
    void updateValues();
    void busListenerFunction(); // runs on the update thread
    bool loadFile();

    /// Asks for a state and waits for it, at most 100 polls of 10 ms. Any thread; takes no lock.
    /// FAILURE without a pipeline, for a number that is no state, and where GStreamer refuses.
    GstStateChangeReturn gstElementSetState(GstState state);

    void resetItem();
    void onDestruct();
    void unrefPipe();
    void stabilizeAfterLoad();
    void onVisible(bool ready);
    void nulldownAndPauseOnGuiThread();
    void videoItemReady();

public:
    // What the threads share
    //
    // Four kinds of threads meet here: the GUI thread, the update thread (tUpdateThread),
    // GStreamer's streaming threads (pad_added_handler), and whatever thread the host writes its
    // record on. Whatever more than one of them touches goes through AtomicAccess.h.
    //
    //   member                        written by          read by
    //   window, parentItem, context,  GUI                 GUI
    //   videoObject, videoItem,
    //   pipelineCache
    //   params                        GUI (release)       update (acquire), GUI
    //   thread                        GUI, before start   update, GUI
    //   pipeline                      GUI under lock      update, streaming (acquire), GUI
    //                                 (release)
    //   other elements                GUI under lock,     streaming, GUI
    //                                 before `pipeline`
    //   pipelineActive                GUI (release)       update (acquire), GUI
    //   pausedBySave                  GUI                 GUI
    //   rebindPending                 GUI under lock      update, GUI
    //   invokePending                 update; GUI clears  update (acquire)
    //                                 it (release)
    //   restoreRequested,             GUI; update clears  update
    //   saveRequested                 them
    //   generation                    GUI, update         update
    //   ending                        GUI under lock      update, GUI
    //   commandQueued                 update; GUI clears  update
    //   commandRunning                GUI (release)       update under lock
    //   bound, widgetsLeftBehind      GUI                 GUI
    //   the record's `execute`        host (release);     update, GUI (acquire)
    //                                 GUI lowers it
    //                                 (release)
    //   done, error, busy             GUI, update under   host
    //                                 lock, as one write
    //   state, position, duration     update under lock   host; GUI reads `state` under lock
    //   attached, view, fileName      GUI                 host, GUI
    //   other fields of the record    host, before        GUI, update
    //                                 `execute`
    //
    // `lock` guards switching pipelines, sequences of state changes, popping the bus, the mark
    // rebindPending, the reports and publication. It is a leaf: nothing is locked inside it, and
    // it is never held across a join, the deletion or re-parenting of an item, a signal, a
    // property that an item or QML may react to, a QML function that runs at once, or an event
    // loop. The GUI thread clears `pipelineActive` before it takes the lock to end a pipeline; an
    // end-of-stream sequence of the update thread then gives up at its next step. Streaming
    // threads and the render thread never take it, since a state change joins them.

    QPointer<QWindow> window;
    QPointer<QQuickItem> parentItem;
    QPointer<QObject> context;
    QPointer<QQuickItem> videoObject;
    MediaPlayerParams *params = nullptr;
    cThread *thread = nullptr;
    QPointer<QQuickItem> videoItem;
    GstElement *pipeline = nullptr;
    GstElement *videoSink = nullptr;
    GstElement *glUpload = nullptr;
    GstElement *glColorConvert = nullptr;
    GstElement *source = nullptr;
    GstElement *audioSink = nullptr;
    GstElement *volumeElement = nullptr;
    bool pipelineActive = false;
    bool pausedBySave = false;
    bool rebindPending = false;
    bool invokePending = false;
    bool restoreRequested = false;
    bool saveRequested = false;
    QHash<QString, QSharedPointer<PipelineCtx>> pipelineCache;

    std::mutex lock;

    /// Goes up with every change down to READY or NULL, every switch and every seek, so that what
    /// was queried before it is not published after it.
    std::uint32_t generation = 0;

    /// The view is about to be deleted or has lost its pipeline: its slots and its thread do
    /// nothing more, and a registration makes a new view.
    bool ending = false;

    /// An updateValues() that the update thread queued has not finished.
    bool commandQueued = false;

    /// A command is being carried out and has not reported. Messages wait for the report, or it
    /// would overwrite the error that the command itself has caused.
    bool commandRunning = false;

    /// A control has been bound at least once.
    bool bound = false;

    Quirks quirks; // GUI

    /// Quick widgets of controls that are gone; deleted when the video object has left them.
    QList<QPointer<QQuickWidget>> widgetsLeftBehind;

    /// True while `view` is a view of this process that is not ending. Accepts any address.
    static bool isUsable(MediaPlayerView *view);

    /// Marks the view as ending and has it deleted at the next turn of the event loop.
    void endLater();

    // The rest is for the view's own files. GUI thread and `lock` not held, unless it says so.

    // view/
    void attachVideoObject();
    void moveHostItemToOrigin();
    void pauseForSave();
    void resumeAfterRestore();
    void placeVideoItem();
    void dropWidgetsLeftBehind();
    void silence(); // at exit: ends what runs, deletes nothing

    // The overlay, always by a posted call. The first two may be called with the lock held; the
    // next two are the update thread's, with the lock held, and are dropped when another pipeline
    // is current by the time they arrive.
    void showOverlay(const QString &text);
    void hideOverlay();
    void showOverlayOfPipeline(const QString &text);
    void hideOverlayOfPipeline();
    void postForPipeline(const std::function<void()> &call);

    // pipeline/
    void loadCached(const PipelineCtx &record);
    bool buildNew(const QByteArray &uri, const QString &key);
    void bindVideoItem(PipelineCtx &record);
    void prerollOnceInitialized(const QQuickItem *item);
    void refuseUnsupported();
    void abandon(PipelineCtx &record);
    void makeCurrent(const PipelineCtx &record); // lock held
    void retireCurrent(); // lock held
    void releaseCurrent(); // lock held, or the thread joined
    void releaseCache(); // the thread joined
    static void releaseRecord(PipelineCtx &record);
    static void awaitNull(GstElement *element);
    static bool isAboveReady(GstElement *element); // or on its way there; any thread
    static void emptyBus(GstElement *element);
    GstStateChangeReturn changeState(GstElement *element, GstState state); // any thread
    void nextGeneration(); // any thread

    // update/
    void updatePass(); // update thread
    bool drainBus(GstElement *current); // update thread; false when it is no longer current
    void publish(GstElement *current); // update thread
    bool listensTo(const GstElement *candidate); // update thread, lock held
    void dropOvertakenEnd(); // GUI, lock held
    void handleError(); // lock held, like the next three
    void handleEndOfStream();
    void handleStateChanged(GstMessage *message);
    void dumpGraph();
    void runCommand(std::int32_t command);
    void commandPlayState();
    void commandSeek();
    void commandTransform();
    void applyVolume();
    void report(bool done);
};

Q_DECLARE_METATYPE(GstState)
Q_DECLARE_METATYPE(GstStateChangeReturn)

#endif
