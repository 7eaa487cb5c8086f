#ifndef SINKCONTEXTS_H
#define SINKCONTEXTS_H

#include "pipeline/GstHandle.h"

#include <vector>

/// Keeps the video sink and its item from leaking. From NULL to READY the sink takes references on
/// its display and GL contexts and forgets those it had, and an item that is in no window makes a
/// new GL context and forgets the one it had: 10 MB and a thread each time.
class SinkContexts
{
public:
    /// Before a change of state: notes what a sink in NULL still holds. Null is accepted.
    explicit SinkContexts(GstElement *sink);

    /// After the change: gives back what has been forgotten, if the sink has come to READY.
    /// `itemsOwn` is a reference on the GL context that the item had last, or null; any thread.
    void giveBack(GstObject *&itemsOwn);

private:
    GstElement *const m_sink;
    bool m_wasInNull = false;
    std::vector<ObjectRef<GstObject>> m_held;
};

#endif
