#include "pipeline/videoFilter.h"

#include "pipeline/GstHandle.h"

#include <gst/video/video.h>

namespace
{

bool isInSystemMemory(GstCaps *format)
{
    return gst_caps_features_is_equal(gst_caps_get_features(format, 0),
                                      GST_CAPS_FEATURES_MEMORY_SYSTEM_MEMORY);
}

bool takesNV12(GstElement *sink)
{
    GstPadTemplate *const entry = sink ? gst_element_get_pad_template(sink, "sink") : nullptr;
    if (!entry)
        return false;
    const CapsRef all(gst_pad_template_get_caps(entry));
    const CapsRef wanted(
        gst_caps_from_string("video/x-raw(memory:GLMemory), format=NV12, texture-target=2D"));
    return gst_caps_can_intersect(all.get(), wanted.get());
}

/// Whether the picture has colour for every second pixel of every second line, as NV12 has, so that
/// nothing but the order of its bytes changes, and with more than 8 bits what no screen shows. What
/// such a sink takes as it is, the format is not.
bool isNearlyNV12(GstCaps *format)
{
    GstVideoInfo info;
    if (!isInSystemMemory(format) || !gst_caps_is_fixed(format)
        || !gst_video_info_from_caps(&info, format))
        return false;
    const GstVideoFormatInfo *const kind = info.finfo;
    return GST_VIDEO_FORMAT_INFO_IS_YUV(kind) && !GST_VIDEO_FORMAT_INFO_HAS_ALPHA(kind)
        && GST_VIDEO_FORMAT_INFO_W_SUB(kind, 1) == 1 && GST_VIDEO_FORMAT_INFO_H_SUB(kind, 1) == 1
        && GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_NV12
        && GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_YV12;
}

} // namespace

// A sink that draws NV12 spares the chain its conversion to RGB, which is most of the cost of
// playing on software GL and memory traffic on a GPU. Making NV12 of a decoder's three planes costs
// less than anything else that was measured, exchanging the names of two of them included.
//
// The picture is turned before anything else is done to it: videoflip takes nearly every format
// that decoders have, and one that it does not take is converted for it.
std::string videoFilterFor(const StreamFormat &stream)
{
    const bool viaNV12 = takesNV12(stream.sink) && isNearlyNV12(stream.format);
    const std::string converter =
        viaNV12 ? "videoconvert ! capsfilter caps=video/x-raw,format=NV12" : "videoconvert";
    if (!stream.turned)
        return stream.refused || viaNV12 ? converter : std::string();
    const std::string turner = std::string("videoflip name=") + videoTurnerName;
    return isInSystemMemory(stream.format) ? "videoconvert ! " + turner + " ! " + converter
                                           : "glupload ! glcolorconvert ! gl" + turner;
}
