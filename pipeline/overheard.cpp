#include "pipeline/overheard.h"

#include "pipeline/GstHandle.h"
#include "pipeline/tags.h"

#include <gst/pbutils/pbutils.h>

namespace
{

/// Elements that stop since another one has failed, or since one is missing, say no more than that.
/// What is missing is told apart from its error.
Relay::Fault faultOf(const GError *error)
{
    const bool follows = g_error_matches(error, GST_STREAM_ERROR, GST_STREAM_ERROR_FAILED)
        || g_error_matches(error, GST_STREAM_ERROR, GST_STREAM_ERROR_CODEC_NOT_FOUND)
        || g_error_matches(error, GST_CORE_ERROR, GST_CORE_ERROR_STATE_CHANGE)
        || g_error_matches(error, GST_CORE_ERROR, GST_CORE_ERROR_MISSING_PLUGIN);
    return follows ? Relay::Fault::Consequence : Relay::Fault::Error;
}

void tellOfError(const Overheard &overheard, GstMessage *message)
{
    GError *error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    overheard.relay->report(overheard.media, faultOf(error), QString::fromUtf8(error->message));
    g_error_free(error);
}

void tellOfMissingPlugin(const Overheard &overheard, GstMessage *message)
{
    if (!gst_is_missing_plugin_message(message))
        return;
    const GlibText missing(gst_missing_plugin_message_get_description(message));
    overheard.relay->report(
        overheard.media, Relay::Fault::Missing,
        QStringLiteral("Not installed: %1").arg(QString::fromUtf8(missing.get())));
}

void tellOfSupply(const Overheard &overheard, GstMessage *message)
{
    Supply &supply = overheard.relay->supply;
    if (!supply.fromNetwork)
        return;
    int percent = 0;
    gst_message_parse_buffering(message, &percent);
    overheard.relay->change(overheard.media, [&](QVariantMap &values) {
        supply.percent = percent;
        if (supply.isShort() && !supply.failed && !values.value(QStringLiteral("live")).toBool())
            values[QStringLiteral("buffering")] = percent;
        else
            values.remove(QStringLiteral("buffering"));
    });
}

// Runs on streaming threads and on whoever changes a state.
GstBusSyncReply onMessage(GstBus *, GstMessage *message, gpointer data)
{
    auto &overheard = *static_cast<Overheard *>(data);
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
        tellOfError(overheard, message);
        break;
    case GST_MESSAGE_ELEMENT:
        tellOfMissingPlugin(overheard, message);
        break;
    case GST_MESSAGE_TAG:
        tellOfTags(overheard, message);
        break;
    case GST_MESSAGE_BUFFERING:
        tellOfSupply(overheard, message);
        break;
    default:
        break;
    }
    return GST_BUS_PASS;
}

} // namespace

bool Overheard::replaceCover(GstBuffer *picture)
{
    GstBuffer *const before = cover.exchange(picture ? gst_buffer_ref(picture) : nullptr);
    if (before)
        gst_buffer_unref(before);
    return picture != before;
}

void overhear(GstElement *pipeline, const QSharedPointer<Relay> &relay)
{
    gst_pb_utils_init();
    const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline));
    gst_bus_set_sync_handler(bus.get(), onMessage, new Overheard {relay, pipeline},
                             [](gpointer data) { delete static_cast<Overheard *>(data); });
}
