#include "quirks/HostlessAddress.h"

#include "pipeline/GstHandle.h"

namespace
{

constexpr char unparsable[] = "http://:port";

bool hasNoHost(const char *uri)
{
    if (!gst_uri_has_protocol(uri, "http") && !gst_uri_has_protocol(uri, "https"))
        return false;
    char *host = nullptr;
    const bool parsed = g_uri_split(uri, G_URI_FLAGS_PARSE_RELAXED, nullptr, nullptr, &host,
                                    nullptr, nullptr, nullptr, nullptr, nullptr);
    const GlibText named(host);
    return parsed && (!named || !*named);
}

void setAddress(GstElement *, GstElement *reader, gpointer)
{
    g_object_set(reader, "location", unparsable, nullptr);
}

} // namespace

void refuseHostlessAddress(GstElement *source, const char *uri)
{
    if (hasNoHost(uri))
        g_signal_connect(source, "source-setup", G_CALLBACK(setAddress), nullptr);
}
