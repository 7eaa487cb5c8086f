#define GST_USE_UNSTABLE_API // the hooks of tracers

#include "Timeline.h"

#include <gst/gst.h>
#include <gst/gsttracer.h>

#include <QtQuick/QQuickWindow>

#include <algorithm>

namespace
{

Timeline *timeline = nullptr;

constexpr std::pair<void (QQuickWindow::*)(), const char *> frameStages[] = {
    {&QQuickWindow::beforeSynchronizing, "scene asks the item"},
    {&QQuickWindow::afterSynchronizing, "scene has the frame"},
    {&QQuickWindow::afterRendering, "scene is drawn"}};

void noteState(GstElement *element, GstStateChange change, bool done)
{
    if (!GST_IS_PIPELINE(element))
        return;
    if (change == GST_STATE_CHANGE_READY_TO_PAUSED && !done)
        timeline->pipelineRises();
    else if (change == GST_STATE_CHANGE_PAUSED_TO_READY && done)
        timeline->pipelineFalls();
}

void beforeChange(GObject *, GstClockTime, GstElement *element, GstStateChange change)
{
    noteState(element, change, false);
}

void afterChange(GObject *, GstClockTime, GstElement *element, GstStateChange change,
                 GstStateChangeReturn)
{
    noteState(element, change, true);
}

GstElementFactory *factoryOf(gpointer object)
{
    return GST_IS_ELEMENT(object) ? gst_element_get_factory(GST_ELEMENT(object)) : nullptr;
}

/// Whether it is the last element of what the plug-in puts in front of its chain.
bool inFilter(GstElement *element)
{
    GstObject *const bin = GST_OBJECT_PARENT(element);
    if (!bin || !g_str_has_prefix(GST_OBJECT_NAME(bin), "videofilter"))
        return false;
    return GST_BIN_CHILDREN(bin)->data == element;
}

/// An element pushes what it has made: its own stage is over.
void beforePush(GObject *, GstClockTime, GstPad *pad, GstBuffer *)
{
    GstElementFactory *const factory = factoryOf(GST_OBJECT_PARENT(pad));
    if (!factory)
        return;
    const gchar *kind = gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS);
    const std::string name = GST_OBJECT_NAME(factory);
    if (strstr(kind, "Demux"))
        timeline->note("demuxer's first packet");
    else if (strstr(kind, "Decoder") && strstr(kind, "Video"))
        timeline->note("decoder's first frame");
    else if (inFilter(GST_ELEMENT(GST_OBJECT_PARENT(pad))))
        timeline->note("filtered");
    else if (name == "glupload")
        timeline->note("uploaded");
    else if (name == "glcolorconvert")
        timeline->note("converted");
}

/// A sink changes its state when it has handed its first frame over.
void beforeMessage(GObject *, GstClockTime, GstElement *element, GstMessage *message)
{
    GstElementFactory *const factory = factoryOf(element);
    if (!factory || GST_MESSAGE_TYPE(message) != GST_MESSAGE_STATE_CHANGED
        || g_strcmp0(GST_OBJECT_NAME(factory), "qml6glsink") != 0)
        return;
    GstState now = GST_STATE_NULL;
    gst_message_parse_state_changed(message, nullptr, &now, nullptr);
    if (now == GST_STATE_PAUSED)
        timeline->note("item has the frame");
}

void listenToGStreamer()
{
    gst_init(nullptr, nullptr);
    const GType type =
        g_type_register_static_simple(GST_TYPE_TRACER, "BenchTracer", sizeof(GstTracerClass),
                                      nullptr, sizeof(GstTracer), nullptr, GTypeFlags(0));
    auto *tracer = GST_TRACER(g_object_new(type, nullptr));
    gst_tracing_register_hook(tracer, "element-change-state-pre", G_CALLBACK(beforeChange));
    gst_tracing_register_hook(tracer, "element-change-state-post", G_CALLBACK(afterChange));
    gst_tracing_register_hook(tracer, "pad-push-pre", G_CALLBACK(beforePush));
    gst_tracing_register_hook(tracer, "element-post-message-pre", G_CALLBACK(beforeMessage));
}

} // namespace

Timeline::Timeline(QQuickWindow *window)
{
    timeline = this;
    for (const auto &[signal, stage] : frameStages)
        connect(
            window, signal, this, [this, stage = stage] { noteFrame(stage); },
            Qt::DirectConnection);
    listenToGStreamer();
}

void Timeline::start()
{
    const std::lock_guard guard(lock);
    running = true;
    rises = 0;
    seen.clear();
    entries.clear();
    frames.clear();
}

void Timeline::note(const char *stage)
{
    const auto now = Clock::now();
    const std::lock_guard guard(lock);
    QString name = QLatin1String(stage);
    if (rises > 1 && stage != loadReturns)
        name += QStringLiteral(", again");
    if (running && seen.insert(name).second)
        entries.push_back({name, now});
}

void Timeline::pipelineRises()
{
    {
        const std::lock_guard guard(lock);
        ++rises;
    }
    note("pipeline rises");
}

void Timeline::pipelineFalls()
{
    note(rises == 0 ? "outgoing pipeline is down" : "down between the prerolls");
}

void Timeline::noteFrame(const char *stage)
{
    const auto now = Clock::now();
    const std::lock_guard guard(lock);
    if (running)
        frames.push_back({QLatin1String(stage), now});
}

std::vector<Timeline::Entry> Timeline::stop(Clock::time_point shown)
{
    const std::lock_guard guard(lock);
    running = false;
    for (const auto &[signal, stage] : frameStages) {
        const auto last =
            std::find_if(frames.rbegin(), frames.rend(), [&, name = stage](const Entry &frame) {
                return frame.stage == QLatin1String(name) && frame.time < shown;
            });
        if (last != frames.rend())
            entries.push_back(*last);
    }
    entries.push_back({QStringLiteral("screen"), shown});
    std::erase_if(entries, [&](const Entry &entry) { return entry.time > shown; });
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry &a, const Entry &b) { return a.time < b.time; });
    return entries;
}
