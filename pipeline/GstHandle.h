#ifndef GSTHANDLE_H
#define GSTHANDLE_H

#include <gst/gst.h>

#include <memory>

// Owners of what a function takes from GStreamer: each adopts the reference that the call returned.

struct GstRelease {
    void operator()(GstCaps *caps) const { gst_caps_unref(caps); }
    void operator()(char *text) const { g_free(text); }
    void operator()(gpointer object) const { gst_object_unref(object); }
};

template <typename T>
using ObjectRef = std::unique_ptr<T, GstRelease>;
using CapsRef = std::unique_ptr<GstCaps, GstRelease>;
using GlibText = std::unique_ptr<char, GstRelease>;

#endif
