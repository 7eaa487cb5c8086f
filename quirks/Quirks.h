#ifndef QUIRKS_H
#define QUIRKS_H

#include <gst/gst.h>

#include <QtCore/QPointer>

class ItemContext;
class NodeFormat;
class QQuickItem;
class WindowEntry;

/// What a view needs so that faults of the platform do not reach its host: its one way to the
/// entries in this folder. README.md lists them. Takes none of the view's locks.
class Quirks
{
public:
    /// [gui] The scene has just been made; its video item has not been in a window yet.
    void sceneMade(QQuickItem *videoItem);

    /// [gui] The sink has been given the video item.
    void sinkBound(GstElement *videoSink);

    /// [gui] Whether the video item has been initialised in the window that it is in.
    bool isItemInitialized() const;

    /// [gui] For the slot that runs when the video item has been initialised: whether the item
    /// still uses the GL context that it used at the last call. False at the first one.
    bool keptContext();

    /// [any] gst_element_set_state() for a built pipeline that goes on living. `videoSink`
    /// may be null, and need not have been added to the pipeline. The caller keeps other changes of
    /// its state away. To end a pipeline use gst_element_set_state(), which takes every element to
    /// NULL.
    static GstStateChangeReturn changeState(GstElement *pipeline, GstElement *videoSink,
                                            GstState state);

    /// [any] Call when a preroll did not complete in time. Posts the error that its source
    /// kept to itself, if it did.
    static void prerollTimedOut(GstElement *pipeline);

    /// [gui] Call when libraries may have been loaded: makes exit() call `stopPlayers` before the
    /// finalizers of all libraries that are loaded by now. Always give the same function.
    static void librariesLoaded(void (*stopPlayers)());

    /// [gui] Call when a pipeline has been built for `uri`. Where its source would write a critical
    /// about the address, the source reports an error on the bus in its place.
    static void pipelineBuilt(GstElement *source, const char *uri);

private:
    // The video item's children.
    QPointer<ItemContext> m_itemContext;
    QPointer<NodeFormat> m_nodeFormat;
    QPointer<WindowEntry> m_windowEntry;
};

#endif
