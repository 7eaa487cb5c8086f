#ifndef MEDIAPLAYERVIEW_H
#define MEDIAPLAYERVIEW_H

#include "boundary/MediaPlayerParams.h"
#include "quirks/Quirks.h"
#include "view/Locks.h"
#include "view/marks.h"

#include <gst/gst.h>

#include <QtCore/QHash>
#include <QtCore/QMetaType>
#include <QtCore/QPointer>
#include <QtCore/QSharedPointer>
#include <QtGui/QWindow>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickView>

class Relay;
class cThread;

/// The player behind one host record.
///
/// It owns the video object (the scene's root item), the current pipeline, one built pipeline per
/// media URI, and the thread that polls the record and the pipeline's bus. The window itself is
/// never shown: the class is a QQuickView so that a Qt Quick host's window can own it.
///
/// [gui] is the application's thread, [update] the view's own, [streaming] GStreamer's, [render] Qt
/// Quick's, which may be the first; [any] is all of them. What stands without one is [gui]. The
/// slots stand together in view/slots.cpp and hand over to the rooms: view/ places the picture and
/// its texts, pipeline/ changes states, update/ listens to the bus and carries out commands.
class MediaPlayerView : public QQuickView
{
    Q_OBJECT

public:
    /// One built pipeline. Plain pointers, null where the file has no use for the element or it
    /// could not be made; pipeline/builtPipelines.cpp says who owns which reference.
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
        bool prerolled = false; ///< under an item that could take frames
    };

    explicit MediaPlayerView(QWindow *hostWindow = nullptr, QQuickItem *hostItem = nullptr,
                             QObject *hostContext = nullptr);

    /// Takes the pipelines down and joins the thread. Waits for a change of state that the update
    /// thread may be inside, which a source or a sound server can hold up.
    ~MediaPlayerView() override;

    void init();
    void initQuickWidget();

    /// Gives the view another host window and item. The video object follows at the next restore.
    void updateReferences(QWindow *hostWindow, QQuickItem *hostItem, QObject *hostContext);

    /// Initialises GStreamer, or ends the process as gst_init does. The arguments are not used.
    void gstInit(int *argc, char ***argv);

    /// A new element with a floating reference, or null.
    GstElement *gstElementFactoryMake(const char *factory, const char *name);

    /// [update] Handles one message of the current pipeline and releases it.
    void handle_message(GstMessage *message) EXCLUDES(sequence, lock);

    bool isVideoSurfaceReady() const;

    /// Applies the record's volume. The argument is not used.
    void updateSize(bool);

    /// Serves `hostRecord` from now on, and ends with `control` rather than with one bound before.
    void bind(const QObject *control, MediaPlayerParams *hostRecord) EXCLUDES(lock);

    /// Call when libraries may have been loaded: exit() stops what plays before it ends those.
    static void librariesLoaded();

    /// A registration of the record makes a new view from now on. This one serves its record
    /// until the event loop deletes it.
    void scheduleDeletion();

    /// Forgets the record for good, since another view serves it, and falls silent.
    void yieldRecord() EXCLUDES(sequence, lock);

    // The overlay over the picture, always by a posted call. The first two speak of what the
    // caller does now; the last two, [any], of `subject`, and come to nothing if another pipeline
    // is current when they arrive.
    void showOverlay(const QString &text);
    void hideOverlay();
    void showOverlayOf(const GstElement *subject, const QString &text);
    void hideOverlayOf(const GstElement *subject);

    /// Sizes and seats the video item by the crop margins. Can run the host's code.
    void placeVideoItem() EXCLUDES(sequence, lock);

    // The order of the signals and slots is the order of the meta-object's methods.
Q_SIGNALS:
    void destruct();
    void videoSurfaceReadyChanged(bool ready);

public Q_SLOTS:
    void restore() EXCLUDES(sequence, lock);
    bool saveObject() EXCLUDES(sequence, lock);
    void updateValues() EXCLUDES(sequence, lock);
    void busListenerFunction() EXCLUDES(sequence, lock); ///< [update]
    bool loadFile() EXCLUDES(sequence, lock);

    /// [any] but streaming and render threads. Asks for a state and waits for it, at most 100 polls
    /// of 10 ms. FAILURE without a pipeline, for a number that is no state to go to, where
    /// GStreamer refuses, and inside a change of state that the caller itself has begun.
    GstStateChangeReturn gstElementSetState(GstState state) EXCLUDES(lock);

    void resetItem() EXCLUDES(sequence, lock);
    void onDestruct() EXCLUDES(sequence, lock);
    void unrefPipe() EXCLUDES(sequence, lock);
    void stabilizeAfterLoad() EXCLUDES(sequence, lock);
    void onVisible(bool ready);
    void nulldownAndPauseOnGuiThread() EXCLUDES(sequence, lock);
    void videoItemReady() EXCLUDES(sequence, lock);

public:
    // Where several threads meet, access goes through boundary/AtomicAccess.h.

    // Of the GUI thread alone.
    QPointer<QWindow> window;
    QPointer<QQuickItem> parentItem;
    QPointer<QObject> context;
    QPointer<QQuickItem> videoObject;

    // The GUI thread replaces it under `lock` (release); the update thread reads it there.
    MediaPlayerParams *params = nullptr;

    // Written before the thread starts and after it has been joined.
    cThread *thread = nullptr;

    // Of the GUI thread alone.
    QPointer<QQuickItem> videoItem;

    // The current pipeline's. The GUI thread replaces them with both locks held, `pipeline` last
    // (release). Streaming threads read each once (acquire), between a change of state that
    // started them and the one that joins them. The update thread reads `pipeline` (acquire)
    // without a lock as a hint, under `lock` for use, and the sinks with `sequence` held.
    GstElement *pipeline = nullptr;
    GstElement *videoSink = nullptr;
    GstElement *glUpload = nullptr;
    GstElement *glColorConvert = nullptr;
    GstElement *source = nullptr;
    GstElement *audioSink = nullptr;
    GstElement *volumeElement = nullptr;

    // The GUI thread writes it (release); the update thread reads it (acquire).
    bool pipelineActive = false;

    // Of the GUI thread alone.
    bool pausedBySave = false;

    // The GUI thread writes it under `lock`; the update thread reads it.
    bool rebindPending = false;

    // The update thread sets it; the slot that it queued clears it (release), read with acquire.
    bool invokePending = false;

    // The GUI thread writes them; the update thread clears the one that it serves.
    bool restoreRequested = false;
    bool saveRequested = false;

    // Of the GUI thread alone, until the update thread has been joined.
    QHash<QString, QSharedPointer<PipelineCtx>> pipelineCache;

    // Streaming and render threads take neither lock, since a change of state joins them.
    Mutex lock;
    SequenceLock sequence ACQUIRED_BEFORE(lock);

    RunMarks shared GUARDED_BY(lock);

    /// A rewind at the end of the stream was given up half way; the next turn knows.
    bool rewindCut GUARDED_BY(sequence) = false;

    /// An updateValues() that was queued has not finished. Written like invokePending.
    bool commandQueued = false;

    // Of the GUI thread alone.
    Life life;
    Quirks quirks;

    const QSharedPointer<Relay> relay; ///< [any] what is told beside the record
};

Q_DECLARE_METATYPE(GstState)
Q_DECLARE_METATYPE(GstStateChangeReturn)

#endif
