#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "view/MediaPlayerView.h"

void MediaPlayerView::gstInit(int *, char ***)
{
    traceLine("MediaPlayerView::gstInit");
    gst_init(nullptr, nullptr);
}

void MediaPlayerView::init()
{
    traceLine("MediaPlayerView::init");
    gstInit(nullptr, nullptr);
    // Making one sink loads the plug-in that registers the scene's video item type with QML.
    ObjectRef<GstElement>(gst_element_factory_make("qml6glsink", nullptr));
}

GstElement *MediaPlayerView::gstElementFactoryMake(const char *factory, const char *name)
{
    traceLine("MediaPlayerView::gstElementFactoryMake");
    return gst_element_factory_make(factory, name);
}
