#ifndef STATECHANGE_H
#define STATECHANGE_H

#include <gst/gst.h>

#include <functional>

// Changes of state of any element, without a view. [any]

/// Asked between two polls of a wait; true ends the wait.
using GiveUp = std::function<bool()>;

/// The state of an element as it is at this moment. Never waits.
struct StateNow {
    GstState current;
    GstState pending; ///< VOID_PENDING unless it is on its way
    GstStateChangeReturn last; ///< result of the last change
};
StateNow stateNow(GstElement *element);

/// Whether the element is above READY, or on its way there.
bool isAboveReady(GstElement *element);

/// Whether the element has come to PAUSED or PLAYING, and is not on its way there.
bool isPrerolled(GstElement *element);

/// Waits until the element has come to `state`, at most 100 polls of 10 ms. SUCCESS when it has,
/// FAILURE when an element refused, else the result of the last poll.
GstStateChangeReturn awaitState(GstElement *element, GstState state, const GiveUp &giveUp = {});

/// Waits until the element has come to NULL, within the same bound. Such a change completes within
/// the call that asks for it; the bound is for an element that breaks this rule.
void awaitNull(GstElement *element);

/// Takes a pipeline down for good, every element of it, and waits as awaitNull() does.
void takeToNull(GstElement *pipeline);

/// Throws away what is queued on the element's bus.
void emptyBus(GstElement *element);

#endif
