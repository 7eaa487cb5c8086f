#ifndef HOSTLESSADDRESS_H
#define HOSTLESSADDRESS_H

#include <gst/gst.h>

// libsoup writes a critical for an HTTP address without a host.
//
// Without it: the host's log gets a critical, and G_DEBUG=fatal-criticals ends the process.
// Where: libsoup 2.74 under GStreamer's souphttpsrc: soup_message_new_from_uri() asserts a host.
// Needed: where the address parses and has no host. souphttpsrc refuses an address that does not
// parse by itself; so it is given one in its place, and reports the same error.
// Can go: when souphttpsrc looks for the host.
// Test: badMedia_test, addresses without a host.

/// [gui] Makes `source` report an address without a host as one that cannot be parsed.
void refuseHostlessAddress(GstElement *source, const char *uri);

#endif
