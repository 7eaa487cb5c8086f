#include "update/facts.h"

#include "pipeline/GstHandle.h"
#include "pipeline/stateChange.h"

#include <QtCore/QSize>

#include <memory>

namespace
{

struct QueryRelease {
    void operator()(GstQuery *query) const { gst_query_unref(query); }
};
using QueryRef = std::unique_ptr<GstQuery, QueryRelease>;

/// Null where it is not linked, or there is none.
ObjectRef<GstPad> linkedPadOf(GstElement *pipeline, const char *sinkName)
{
    const ObjectRef<GstElement> sink(gst_bin_get_by_name(GST_BIN(pipeline), sinkName));
    ObjectRef<GstPad> pad(sink ? gst_element_get_static_pad(sink.get(), "sink") : nullptr);
    if (pad && !gst_pad_is_linked(pad.get()))
        pad.reset();
    return pad;
}

void addPicture(QVariantMap &facts, GstPad *pad)
{
    const CapsRef format(gst_pad_get_current_caps(pad));
    if (!format)
        return;
    const GstStructure *const fields = gst_caps_get_structure(format.get(), 0);
    QSize size;
    if (gst_structure_get(fields, "width", G_TYPE_INT, &size.rwidth(), "height", G_TYPE_INT,
                          &size.rheight(), nullptr))
        facts[QStringLiteral("videoSize")] = size;
    int numerator = 1;
    int denominator = 1;
    gst_structure_get_fraction(fields, "pixel-aspect-ratio", &numerator, &denominator);
    facts[QStringLiteral("pixelAspectRatio")] = QSize(numerator, denominator);
}

void addSeekable(QVariantMap &facts, GstElement *pipeline)
{
    const QueryRef seeking(gst_query_new_seeking(GST_FORMAT_TIME));
    gboolean seekable = false;
    if (!gst_element_query(pipeline, seeking.get()))
        return;
    gst_query_parse_seeking(seeking.get(), nullptr, &seekable, nullptr, nullptr);
    facts[QStringLiteral("seekable")] = bool(seekable);
}

/// What comes before the sink is asked: a sink that keeps time calls itself live.
void addLive(QVariantMap &facts, GstElement *pipeline, GstPad *sinkPad)
{
    const QueryRef latency(gst_query_new_latency());
    gboolean live = stateNow(pipeline).last == GST_STATE_CHANGE_NO_PREROLL;
    if (!live && (!sinkPad || !gst_pad_peer_query(sinkPad, latency.get())))
        return;
    if (!live)
        gst_query_parse_latency(latency.get(), &live, nullptr, nullptr);
    facts[QStringLiteral("live")] = bool(live);
}

} // namespace

QVariantMap factsOf(GstElement *pipeline)
{
    QVariantMap facts;
    if (!isPrerolled(pipeline))
        return facts;
    const auto video = linkedPadOf(pipeline, "videosink");
    const auto audio = linkedPadOf(pipeline, "audiosink");
    facts[QStringLiteral("hasVideo")] = bool(video);
    facts[QStringLiteral("hasAudio")] = bool(audio);
    if (video)
        addPicture(facts, video.get());
    addSeekable(facts, pipeline);
    addLive(facts, pipeline, video ? video.get() : audio.get());
    return facts;
}
