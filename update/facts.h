#ifndef FACTS_H
#define FACTS_H

#include <gst/gst.h>

#include <QtCore/QVariantMap>

/// [update] What a prerolled pipeline answers to questions about its media, as Relay names it; only
/// what it can tell. A source can hold the answers up, so no lock is held.
QVariantMap factsOf(GstElement *pipeline);

#endif
