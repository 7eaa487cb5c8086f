#include "quirks/NodeFormat.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <gst/video/gstvideosink.h>

#include <atomic>

namespace
{

bool isNeededFor(GstElement *videoSink)
{
    GstElementFactory *const factory = gst_element_get_factory(videoSink);
    const ObjectRef<GstPlugin> plugin(
        factory ? gst_plugin_feature_get_plugin(GST_PLUGIN_FEATURE(factory)) : nullptr);
    return plugin && g_str_has_prefix(gst_plugin_get_version(plugin.get()), "1.28.");
}

/// The same format, which compares as another one: by a field that nobody reads.
CapsRef madeNew(const GstCaps *format)
{
    static std::atomic<int> made = 0;
    CapsRef caps(gst_caps_copy(format));
    gst_caps_set_simple(caps.get(), "announcement", G_TYPE_INT, ++made, nullptr);
    return caps;
}

// What a preroll brings may be what the item has had already.
GstPadProbeReturn beforeFormat(GstPad *, GstPadProbeInfo *info, gpointer)
{
    GstEvent *const event = GST_PAD_PROBE_INFO_EVENT(info);
    if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS)
        return GST_PAD_PROBE_OK;
    GstCaps *format = nullptr;
    gst_event_parse_caps(event, &format);
    GstEvent *const renewed = gst_event_new_caps(madeNew(format).get());
    gst_event_set_seqnum(renewed, gst_event_get_seqnum(event));
    gst_event_unref(event);
    GST_PAD_PROBE_INFO_DATA(info) = renewed;
    return GST_PAD_PROBE_OK;
}

/// Shows the frame again that the sink has shown last, if it still has one.
void showAgain(GstBaseSink *sink)
{
    GstSample *const sample = gst_base_sink_get_last_sample(sink);
    if (!sample)
        return;
    GST_BASE_SINK_PREROLL_LOCK(sink);
    GST_BASE_SINK_GET_CLASS(sink)->set_caps(sink, madeNew(gst_sample_get_caps(sample)).get());
    GST_VIDEO_SINK_GET_CLASS(sink)->show_frame(GST_VIDEO_SINK(sink), gst_sample_get_buffer(sample));
    GST_BASE_SINK_PREROLL_UNLOCK(sink);
    gst_sample_unref(sample);
}

} // namespace

NodeFormat::NodeFormat(QQuickItem *videoItem) : QObject(videoItem)
{
    connect(videoItem, &QQuickItem::windowChanged, this,
            [this, previous = QPointer<QQuickWindow>()](QQuickWindow *window) mutable {
                if (previous)
                    disconnect(previous, nullptr, this, nullptr);
                previous = window;
                if (!window)
                    return;
                showFramesAgain();
                connect(window, &QQuickWindow::sceneGraphInvalidated, this,
                        &NodeFormat::showFramesAgain, Qt::DirectConnection);
            });
}

void NodeFormat::watch(GstElement *videoSink)
{
    const ObjectRef<GstPad> entry(gst_element_get_static_pad(videoSink, "sink"));
    if (!entry || !isNeededFor(videoSink))
        return;
    gst_pad_add_probe(entry.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, beforeFormat, nullptr,
                      nullptr);
    m_sinks.emplace_back(GST_ELEMENT(gst_object_ref(videoSink)));
}

void NodeFormat::showFramesAgain()
{
    for (const auto &sink : m_sinks)
        showAgain(GST_BASE_SINK(sink.get()));
}
