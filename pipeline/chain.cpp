#include "pipeline/chain.h"

#include "boundary/AtomicAccess.h"
#include "diagnostics/Trace.h"
#include "pipeline/GstHandle.h"
#include "view/MediaPlayerView.h"

namespace
{

ObjectRef<GstPad> sinkPadOf(GstElement *element)
{
    return ObjectRef<GstPad>(element ? gst_element_get_static_pad(element, "sink") : nullptr);
}

ObjectRef<GstElement> converterIn(GstElement *pipeline, const Chain &chain)
{
    return ObjectRef<GstElement>(gst_bin_get_by_name(GST_BIN(pipeline), chain.converterName));
}

/// Takes an element out with its links. It stays locked while it is outside, so that a state
/// change of the pipeline that has just met it cannot raise it again.
void takeOut(GstElement *pipeline, GstElement *element)
{
    gst_element_set_locked_state(element, true);
    gst_bin_remove(GST_BIN(pipeline), element);
    gst_element_set_state(element, GST_STATE_NULL);
}

void takeConverterOut(GstElement *pipeline, const Chain &chain)
{
    if (const auto converter = converterIn(pipeline, chain))
        takeOut(pipeline, converter.get());
}

/// Puts the elements that exist into the pipeline and joins them. One that is there already stays,
/// with its links: a later preroll finds the chain built.
void join(GstElement *pipeline, const Chain &chain)
{
    GstElement *previous = nullptr;
    for (GstElement *element : chain.elements) {
        if (!element)
            continue;
        if (!GST_OBJECT_PARENT(element)) {
            gst_bin_add(GST_BIN(pipeline), element);
            gst_element_set_locked_state(element, false);
            if (previous)
                gst_element_link(previous, element);
        }
        previous = element;
    }
}

/// A stream that the converter does not take either stays unlinked.
void convert(GstElement *pipeline, const Chain &chain, GstPad *stream)
{
    GstElement *const converter = gst_parse_bin_from_description_full(
        chain.converter, true, nullptr, GST_PARSE_FLAG_FATAL_ERRORS, nullptr);
    if (!converter)
        return;
    gst_object_set_name(GST_OBJECT(converter), chain.converterName);
    gst_bin_add(GST_BIN(pipeline), converter);
    if (gst_element_link(converter, chain.elements.front())
        && GST_PAD_LINK_SUCCESSFUL(gst_pad_link(stream, sinkPadOf(converter).get())))
        gst_element_sync_state_with_parent(converter);
    else
        takeConverterOut(pipeline, chain);
}

/// What a pad that the source shows stands for, in the end the decoder's own pad.
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

struct Conversion {
    GstElement *pipeline;
    Chain chain;
};

/// The stream's format is on its way to the chain, the first or a new one. A decoder may have been
/// linked before it knew its format, and what the sink takes is known only now that its device is
/// open.
GstPadProbeReturn beforeFormat(GstPad *pad, GstPadProbeInfo *info, gpointer data)
{
    GstEvent *const event = GST_PAD_PROBE_INFO_EVENT(info);
    if (GST_EVENT_TYPE(event) != GST_EVENT_CAPS)
        return GST_PAD_PROBE_OK;
    const auto &[pipeline, chain] = *static_cast<const Conversion *>(data);
    const auto entry = sinkPadOf(chain.elements.front());
    const ObjectRef<GstPad> stream(gst_pad_get_peer(entry.get()));
    if (!stream || !standsFor(stream.get(), pad))
        return GST_PAD_PROBE_OK;
    GstCaps *format = nullptr;
    gst_event_parse_caps(event, &format);
    const CapsRef taken(gst_pad_query_caps(entry.get(), format));
    if (gst_caps_is_empty(taken.get())) {
        gst_pad_unlink(stream.get(), entry.get());
        convert(pipeline, chain, stream.get());
    }
    return GST_PAD_PROBE_OK;
}

/// Each pad on the way is asked whether it takes the format, so it is watched before each.
void watchFormat(GstElement *pipeline, const Chain &chain, GstPad *stream)
{
    gst_pad_add_probe(stream, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, beforeFormat,
                      new Conversion {pipeline, chain},
                      [](gpointer data) { delete static_cast<Conversion *>(data); });
    if (const auto target = targetOf(stream))
        watchFormat(pipeline, chain, target.get());
}

} // namespace

Chain audioChainOf(MediaPlayerView *view)
{
    return {{loadRelaxed(view->volumeElement), loadRelaxed(view->audioSink)},
            "audio/x-raw",
            "audioconvert ! audioresample",
            "audioconverter"};
}

Chain videoChainOf(MediaPlayerView *view)
{
    return {{loadRelaxed(view->glUpload), loadRelaxed(view->glColorConvert),
             loadRelaxed(view->videoSink)},
            "video/x-raw",
            "videoconvert",
            "videoconverter"};
}

bool isFree(GstElement *pipeline, const Chain &chain)
{
    const auto converter = converterIn(pipeline, chain);
    const auto entry = sinkPadOf(converter ? converter.get() : chain.elements.front());
    return entry && !gst_pad_is_linked(entry.get());
}

void linkStream(GstElement *pipeline, const Chain &chain, GstPad *stream, const char *type)
{
    takeConverterOut(pipeline, chain);
    join(pipeline, chain);
    const auto entry = sinkPadOf(chain.elements.front());
    const bool convertible = g_str_has_prefix(type, chain.rawType);
    if (GST_PAD_LINK_FAILED(gst_pad_link(stream, entry.get()))) {
        traceGlib("  Type is '%s' but link failed.\n", type);
        if (convertible)
            convert(pipeline, chain, stream);
    } else if (convertible) {
        watchFormat(pipeline, chain, stream);
    }
    Quirks::chainJoined(chain.elements.back());
    for (GstElement *element : chain.elements) {
        if (element)
            gst_element_sync_state_with_parent(element);
    }
}

void leaveIfFree(GstElement *pipeline, const Chain &chain)
{
    if (!isFree(pipeline, chain))
        return;
    takeConverterOut(pipeline, chain);
    for (GstElement *element : chain.elements) {
        if (element && GST_OBJECT_PARENT(element))
            takeOut(pipeline, element);
    }
}
