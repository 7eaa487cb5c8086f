#ifndef HOSTLESSADDRESS_H
#define HOSTLESSADDRESS_H

#include <gst/gst.h>

// libsoup writes a critical for an HTTP address without a host.
//
// Without it: the host's log gets a critical, and G_DEBUG=fatal-criticals ends the process.
// Where: libsoup 2.74 under GStreamer's souphttpsrc: soup_message_new_from_uri() asserts a host.
// libsoup 3 does not write it.
// Needed: for an address that parses and has no host, whatever libsoup is loaded. souphttpsrc
// refuses by itself an address that does not parse, so it is given one, and reports the same error.
// Can go: when souphttpsrc looks for the host.
// Test: badMedia_test, http:///a.mp4, on Debian 12.

/// [gui] Makes `source` report an address without a host as one that cannot be parsed.
void refuseHostlessAddress(GstElement *source, const char *uri);

#endif
