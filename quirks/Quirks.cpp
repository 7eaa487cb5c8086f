#include "quirks/Quirks.h"

#include "quirks/CurrentContext.h"
#include "quirks/ExitOrder.h"
#include "quirks/HostlessAddress.h"
#include "quirks/ItemContext.h"
#include "quirks/LostError.h"
#include "quirks/NodeFormat.h"
#include "quirks/SinkInReady.h"
#include "quirks/WindowEntry.h"

#include <QtQuick/QQuickItem>

// The GL context is noted before the item looks at it: connections are served in their order.
void Quirks::sceneMade(QQuickItem *videoItem)
{
    keepCurrentContext(videoItem);
    m_windowEntry = new WindowEntry(videoItem);
    m_itemContext = new ItemContext(videoItem);
    m_nodeFormat = new NodeFormat(videoItem);
}

void Quirks::sinkBound(GstElement *videoSink)
{
    if (m_nodeFormat)
        m_nodeFormat->watch(videoSink);
}

bool Quirks::isItemInitialized() const
{
    return m_windowEntry && m_windowEntry->isInitialized();
}

bool Quirks::keptContext()
{
    return m_itemContext && m_itemContext->kept();
}

GstStateChangeReturn Quirks::changeState(GstElement *pipeline, GstElement *videoSink,
                                         GstState state)
{
    return state == GST_STATE_NULL ? toNullWithoutSink(pipeline, videoSink)
                                   : gst_element_set_state(pipeline, state);
}

void Quirks::prerollTimedOut(GstElement *pipeline)
{
    postLostError(pipeline);
}

void Quirks::librariesLoaded(void (*stopPlayers)())
{
    runBeforeLibrariesEnd(stopPlayers);
}

void Quirks::pipelineBuilt(GstElement *source, const char *uri)
{
    refuseHostlessAddress(source, uri);
}
