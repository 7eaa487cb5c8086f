#include "Bench.h"
#include "Subject.h"

#include <gst/gst.h>

#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>

namespace
{

struct Pipeline {
    GstElement *pipeline;
    GstElement *upload;
    GstElement *convert;
    GstElement *sink;
    GstElement *volume;
    GstElement *audioSink;
};

void padAdded(GstElement *, GstPad *pad, Pipeline *self)
{
    GstCaps *caps = gst_pad_query_caps(pad, nullptr);
    const bool audio =
        g_str_has_prefix(gst_structure_get_name(gst_caps_get_structure(caps, 0)), "audio/x-raw");
    gst_caps_unref(caps);
    GstElement *const first = audio ? self->volume : self->upload;
    if (!GST_OBJECT_PARENT(first)) {
        if (audio) {
            gst_bin_add_many(GST_BIN(self->pipeline), self->volume, self->audioSink, nullptr);
            gst_element_link(self->volume, self->audioSink);
        } else {
            gst_bin_add_many(GST_BIN(self->pipeline), self->upload, self->convert, self->sink,
                             nullptr);
            gst_element_link_many(self->upload, self->convert, self->sink, nullptr);
        }
    }
    GstPad *entry = gst_element_get_static_pad(first, "sink");
    gst_pad_link(pad, entry);
    gst_object_unref(entry);
    for (GstElement *element : {self->upload, self->convert, self->sink})
        if (!audio)
            gst_element_sync_state_with_parent(element);
    for (GstElement *element : {self->volume, self->audioSink})
        if (audio)
            gst_element_sync_state_with_parent(element);
}

GstElement *make(const char *factory)
{
    GstElement *element = gst_element_factory_make(factory, nullptr);
    if (!element)
        fail(QStringLiteral("no element ") + QLatin1String(factory));
    return GST_ELEMENT(gst_object_ref_sink(element));
}

/// One video object per process would do for a single player; each player has its own, as in the
/// plug-in, and all share one engine.
QQuickItem *makeVideoObject(QQuickItem *place)
{
    static QQmlEngine engine;
    QQmlComponent component(
        &engine, QUrl::fromLocalFile(QStringLiteral(MEDIAPLAYER_SCENE_DIR "/VideoObjectQt6.qml")));
    auto *root = qobject_cast<QQuickItem *>(component.create());
    if (!root)
        fail(component.errorString());
    root->setParent(place);
    root->setParentItem(place);
    return root->findChild<QQuickItem *>(QStringLiteral("videoItem"));
}

class BarePipeline : public Subject
{
public:
    explicit BarePipeline(QQuickItem *place)
    {
        gst_init(nullptr, nullptr);
        gst_object_unref(make("qml6glsink")); // registers the item's type
        item = makeVideoObject(place);
    }

    ~BarePipeline() override
    {
        for (Pipeline *record : std::as_const(pipelines))
            gst_element_set_state(record->pipeline, GST_STATE_NULL);
    }

    void open(const QString &uri) override
    {
        if (current)
            gst_element_set_state(current->pipeline, GST_STATE_READY);
        if ((current = pipelines.value(uri))) {
            gst_element_set_state(current->pipeline, GST_STATE_PAUSED);
            return;
        }
        current = build(uri);
        pipelines.insert(uri, current);
        // The sink takes the item's GL contexts on its way to READY.
        await("the video item", [this] { return item->property("itemInitialized").toBool(); });
        gst_element_set_state(current->pipeline, GST_STATE_PAUSED);
        gst_element_get_state(current->pipeline, nullptr, nullptr, GST_SECOND);
        gst_element_set_state(current->pipeline, GST_STATE_NULL);
        gst_element_set_state(current->pipeline, GST_STATE_PAUSED);
    }

    void play() override { gst_element_set_state(current->pipeline, GST_STATE_PLAYING); }
    void pause() override { gst_element_set_state(current->pipeline, GST_STATE_PAUSED); }

private:
    Pipeline *build(const QString &uri)
    {
        auto *record =
            new Pipeline {gst_pipeline_new(nullptr), make("glupload"), make("glcolorconvert"),
                          make("qml6glsink"),        make("volume"),   make("autoaudiosink")};
        GstElement *source = gst_element_factory_make("uridecodebin", nullptr);
        g_object_set(source, "uri", uri.toUtf8().constData(), "use-buffering", TRUE, "buffer-size",
                     10 * 1024 * 1024, nullptr);
        g_object_set(record->sink, "widget", item.data(), "force-aspect-ratio", FALSE, nullptr);
        gst_bin_add(GST_BIN(record->pipeline), source);
        g_signal_connect(source, "pad-added", G_CALLBACK(padAdded), record);
        // Nobody reads the bus; without this its messages would pile up.
        GstBus *bus = gst_element_get_bus(record->pipeline);
        gst_bus_set_flushing(bus, TRUE);
        gst_object_unref(bus);
        return record;
    }

    QPointer<QQuickItem> item;
    QHash<QString, Pipeline *> pipelines;
    Pipeline *current = nullptr;
};

} // namespace

std::unique_ptr<Subject> makeBarePipeline(QQuickItem *place)
{
    return std::make_unique<BarePipeline>(place);
}
