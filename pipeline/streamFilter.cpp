#include "pipeline/streamFilter.h"

#include "pipeline/stateChange.h"

#include <gst/video/video.h>

#include <optional>

namespace
{

ObjectRef<GstPad> sinkPadOf(GstElement *element)
{
    return ObjectRef<GstPad>(element ? gst_element_get_static_pad(element, "sink") : nullptr);
}

ObjectRef<GstElement> elementIn(GstElement *pipeline, const char *name)
{
    return ObjectRef<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline), name));
}

/// Under this name a filter keeps the format that it was made for.
constexpr char madeFor[] = "made-for";

bool putFilterIn(GstElement *pipeline, const Chain &chain, const std::string &description)
{
    GstElement *const filter = gst_parse_bin_from_description_full(
        description.c_str(), true, nullptr, GST_PARSE_FLAG_FATAL_ERRORS, nullptr);
    if (!filter)
        return false;
    gst_object_set_name(GST_OBJECT(filter), chain.filterName);
    gst_bin_add(GST_BIN(pipeline), filter);
    // Whether the stream fits is asked when it is linked: that question goes through the filter.
    return gst_element_link_pads_full(filter, "src", chain.elements.front(), "sink",
                                      GST_PAD_LINK_CHECK_NOTHING)
        && gst_element_sync_state_with_parent(filter);
}

bool linked(GstPad *stream, const ObjectRef<GstPad> &entry)
{
    return GST_PAD_LINK_SUCCESSFUL(gst_pad_link(stream, entry.get()));
}

using WayUp = std::optional<GstVideoOrientationMethod>;

/// What the tags that have come to a pad say, if they say anything.
WayUp wayUpOn(GstPad *pad)
{
    WayUp found;
    guint index = 0;
    while (GstEvent *const event = gst_pad_get_sticky_event(pad, GST_EVENT_TAG, index++)) {
        GstTagList *tags = nullptr;
        GstVideoOrientationMethod method = GST_VIDEO_ORIENTATION_IDENTITY;
        gst_event_parse_tag(event, &tags);
        if (gst_video_orientation_from_tag(tags, &method))
            found = method;
        gst_event_unref(event);
    }
    return found;
}

/// What the tags on a decoder's pad say, or those that have come to its input: a decoder sends its
/// first format before its tags. The format of a picture that is still to be turned must not reach
/// GStreamer's item, which would take the next frame to have it.
WayUp wayUpOf(GstPad *pad)
{
    WayUp found = wayUpOn(pad);
    const ObjectRef<GstElement> element(gst_pad_get_parent_element(pad));
    for (GList *entry = element ? element->sinkpads : nullptr; entry && !found; entry = entry->next)
        found = wayUpOn(GST_PAD(entry->data));
    return found;
}

enum class News { Format, Tags };

/// Fits the filter to a format or to tags that have come to `pad`, the real pad behind `stream`. A
/// filter that is there stays if nothing else is needed, and for ever if it turns.
void adjust(GstElement *pipeline, const Chain &chain, GstPad *stream, GstPad *pad, News news,
            GstCaps *format)
{
    const WayUp wayUp = wayUpOf(pad);
    const auto updateTurner = [&] {
        const auto turner = elementIn(pipeline, chain.turnerName);
        if (turner && wayUp)
            g_object_set(turner.get(), "video-direction", *wayUp, nullptr);
        return bool(turner);
    };
    const bool turned = wayUp && *wayUp != GST_VIDEO_ORIENTATION_IDENTITY;
    const bool filtered = bool(elementIn(pipeline, chain.filterName));
    if (updateTurner() || (!turned && (filtered || news == News::Tags)))
        return;
    GstElement *const first = chain.elements.front();
    const auto own = sinkPadOf(first);
    const CapsRef taken(gst_pad_query_caps(own.get(), format));
    const std::string needed = chain.filterFor(
        {format, chain.elements.back(), bool(gst_caps_is_empty(taken.get())), turned});
    if (needed.empty())
        return;
    gst_pad_unlink(stream, entryOf(pipeline, chain).get());
    takeFilterOut(pipeline, chain);
    // Once it has had frames, glupload takes none that it would have to treat in another way.
    if (stateNow(first).current > GST_STATE_READY)
        gst_element_set_state(first, GST_STATE_READY);
    if (!putFilterIn(pipeline, chain, needed) || !linked(stream, entryOf(pipeline, chain))) {
        takeFilterOut(pipeline, chain);
        linked(stream, own);
    } else if (!turned) {
        g_object_set_data_full(G_OBJECT(elementIn(pipeline, chain.filterName).get()), madeFor,
                               gst_caps_ref(format),
                               [](gpointer caps) { gst_caps_unref(GST_CAPS(caps)); });
    }
    updateTurner();
    gst_element_sync_state_with_parent(first);
}

/// The ghost pad's target; null for a real pad.
ObjectRef<GstPad> targetOf(GstPad *pad)
{
    return ObjectRef<GstPad>(GST_IS_GHOST_PAD(pad) ? gst_ghost_pad_get_target(GST_GHOST_PAD(pad))
                                                   : nullptr);
}

bool standsFor(GstPad *stream, const GstPad *pad)
{
    const auto target = targetOf(stream);
    return stream == pad || (target && standsFor(target.get(), pad));
}

struct Watched {
    GstElement *pipeline;
    Chain chain;
};

/// A format or tags are on their way to the chain. A decoder may have been linked before it knew
/// its format, and what the sink takes is known only when its device is open. Tags come after the
/// first format and before the first frame, where they have not been found at the decoder, or at
/// any time later.
GstPadProbeReturn beforeEvent(GstPad *pad, GstPadProbeInfo *info, gpointer data)
{
    GstEvent *const event = GST_PAD_PROBE_INFO_EVENT(info);
    const bool bringsFormat = GST_EVENT_TYPE(event) == GST_EVENT_CAPS;
    if (!bringsFormat && GST_EVENT_TYPE(event) != GST_EVENT_TAG)
        return GST_PAD_PROBE_OK;
    const auto &[pipeline, chain] = *static_cast<const Watched *>(data);
    const auto entry = entryOf(pipeline, chain);
    const ObjectRef<GstPad> stream(gst_pad_get_peer(entry.get()));
    if (!stream || !standsFor(stream.get(), pad))
        return GST_PAD_PROBE_OK;
    GstCaps *format = nullptr;
    if (bringsFormat)
        gst_event_parse_caps(event, &format);
    const CapsRef known(format ? gst_caps_ref(format) : gst_pad_get_current_caps(pad));
    if (known)
        adjust(pipeline, chain, stream.get(), pad, bringsFormat ? News::Format : News::Tags,
               known.get());
    return GST_PAD_PROBE_OK;
}

/// Watches `stream` and every target behind it: a probe on the first pad that an event passes runs
/// before the pads after it are asked whether they accept the format.
void watch(GstElement *pipeline, const Chain &chain, GstPad *stream)
{
    gst_pad_add_probe(stream, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, beforeEvent,
                      new Watched {pipeline, chain},
                      [](gpointer data) { delete static_cast<Watched *>(data); });
    if (const auto target = targetOf(stream))
        watch(pipeline, chain, target.get());
}

} // namespace

ObjectRef<GstPad> entryOf(GstElement *pipeline, const Chain &chain)
{
    const auto filter = elementIn(pipeline, chain.filterName);
    return sinkPadOf(filter ? filter.get() : chain.elements.front());
}

void filterStream(GstElement *pipeline, const Chain &chain, GstPad *stream)
{
    GstCaps *const known = gst_pad_get_current_caps(stream);
    const CapsRef format(known ? known : gst_pad_query_caps(stream, nullptr));
    ObjectRef<GstPad> deepest(GST_PAD(gst_object_ref(stream)));
    while (auto next = targetOf(deepest.get()))
        deepest = std::move(next);
    adjust(pipeline, chain, stream, deepest.get(), News::Format, format.get());
    watch(pipeline, chain, stream);
}

void takeFilterOutUnlessFor(GstPad *stream, GstElement *pipeline, const Chain &chain)
{
    const auto filter = elementIn(pipeline, chain.filterName);
    void *const kept = filter ? g_object_get_data(G_OBJECT(filter.get()), madeFor) : nullptr;
    const CapsRef format(gst_pad_get_current_caps(stream));
    if (!kept || !format || !gst_caps_is_equal(format.get(), GST_CAPS(kept)))
        takeFilterOut(pipeline, chain);
}

void takeFilterOut(GstElement *pipeline, const Chain &chain)
{
    if (const auto filter = elementIn(pipeline, chain.filterName))
        takeOut(pipeline, filter.get());
}

void takeOut(GstElement *pipeline, GstElement *element)
{
    gst_element_set_locked_state(element, true);
    gst_bin_remove(GST_BIN(pipeline), element);
    gst_element_set_state(element, GST_STATE_NULL);
}
