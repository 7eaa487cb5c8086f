#ifndef NODEFORMAT_H
#define NODEFORMAT_H

#include "pipeline/GstHandle.h"

#include <QtCore/QObject>

#include <vector>

class QQuickItem;

// The video item tells its paint node the format of the frames only when the format changes.
//
// Without it: an item that enters a window again, to which Qt Quick gives a new node, aborts the
// process at its next frame ("gstqsg6material.cc ... setBuffer ... code should not be reached"),
// after a critical from gst_video_frame_map_id(). Hiding and showing a player does that, and so
// does the command for the aspect ratio.
// Where: GStreamer's GstGLQt6VideoItem, seen with 1.28.8; no ticket known. 1.22.0 and 1.26.2 tell
// each node.
// Needed: with a plug-in of the series 1.28. Nothing shows it beforehand but the abort, so that the
// version of the loaded plug-in decides.
// Can go: when no series tells a node only once.
// Test: quirks_test, itemGoesWhileAnEarlierWindowIsHidden, on such a version, as all tests that
// hide and show.

/// Makes each format that reaches the item a new one. The item's child.
class NodeFormat : public QObject
{
public:
    explicit NodeFormat(QQuickItem *videoItem);

    /// [gui] The sink has been given the item.
    void watch(GstElement *videoSink);

private:
    void showFramesAgain(); // [gui], or [render] while the GUI thread waits

    std::vector<ObjectRef<GstElement>> m_sinks;
};

#endif
