#include "pipeline/messageWatch.h"

#include "pipeline/GstHandle.h"
#include "pipeline/tags.h"

#include <gst/pbutils/pbutils.h>

#include <cstring>

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

void publishError(const MessageWatch &watch, GstMessage *message)
{
    GError *error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    watch.relay->report(watch.media, faultOf(error), QString::fromUtf8(error->message));
    g_error_free(error);
}

void publishMissingPlugin(const MessageWatch &watch, GstMessage *message)
{
    if (!gst_is_missing_plugin_message(message))
        return;
    const GlibText missing(gst_missing_plugin_message_get_description(message));
    watch.relay->report(watch.media, Relay::Fault::Missing,
                        QStringLiteral("Not installed: %1").arg(QString::fromUtf8(missing.get())));
}

struct Header {
    const char *name;
    const char *value = nullptr;
};

const char *valueOf(const GstStructure *headers, const char *name)
{
    Header header {name};
    gst_structure_foreach(
        headers,
        [](GQuark field, const GValue *value, gpointer data) -> gboolean {
            auto &wanted = *static_cast<Header *>(data);
            if (G_VALUE_HOLDS_STRING(value)
                && g_ascii_strcasecmp(g_quark_to_string(field), wanted.name) == 0)
                wanted.value = g_value_get_string(value);
            return true;
        },
        &header);
    return header.value;
}

/// GStreamer takes every server that tells a length for one that can begin in the middle. Where it
/// cannot, a seek ends the media with an error, so it has to be known before. A playlist's own
/// server says nothing of the pieces.
void publishServer(const MessageWatch &watch, GstMessage *message)
{
    if (!gst_message_has_name(message, "http-headers"))
        return;
    const GstStructure *const answer = gst_message_get_structure(message);
    const GValue *const headers = gst_structure_get_value(answer, "response-headers");
    guint status = 0;
    gst_structure_get_uint(answer, "http-status-code", &status);
    if (status / 100 != 2 || !headers || !GST_VALUE_HOLDS_STRUCTURE(headers))
        return;
    const GstStructure *const fields = gst_value_get_structure(headers);
    const char *const ranges = valueOf(fields, "Accept-Ranges");
    const char *const type = valueOf(fields, "Content-Type");
    const bool lists = type && (std::strstr(type, "mpegurl") || std::strstr(type, "dash"));
    const bool takesRanges =
        lists || status == 206 || (ranges && g_ascii_strcasecmp(ranges, "none") != 0);
    watch.relay->change(watch.media,
                        [&](QVariantMap &) { watch.relay->supply.takesRanges = takesRanges; });
}

void publishSupply(const MessageWatch &watch, GstMessage *message)
{
    Supply &supply = watch.relay->supply;
    if (!supply.fromNetwork)
        return;
    int percent = 0;
    gst_message_parse_buffering(message, &percent);
    watch.relay->change(watch.media, [&](QVariantMap &values) {
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
    auto &watch = *static_cast<MessageWatch *>(data);
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
        publishError(watch, message);
        break;
    case GST_MESSAGE_ELEMENT:
        publishMissingPlugin(watch, message);
        publishServer(watch, message);
        break;
    case GST_MESSAGE_TAG:
        publishTags(watch, message);
        break;
    case GST_MESSAGE_BUFFERING:
        publishSupply(watch, message);
        break;
    default:
        break;
    }
    return GST_BUS_PASS;
}

} // namespace

bool MessageWatch::replaceCover(GstBuffer *picture)
{
    GstBuffer *const before = cover.exchange(picture ? gst_buffer_ref(picture) : nullptr);
    if (before)
        gst_buffer_unref(before);
    return picture != before;
}

void watchMessages(GstElement *pipeline, const QSharedPointer<Relay> &relay)
{
    gst_pb_utils_init();
    const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline));
    gst_bus_set_sync_handler(bus.get(), onMessage, new MessageWatch {relay, pipeline},
                             [](gpointer data) { delete static_cast<MessageWatch *>(data); });
}
