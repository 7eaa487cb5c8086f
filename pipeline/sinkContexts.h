#ifndef SINKCONTEXTS_H
#define SINKCONTEXTS_H

#include "pipeline/GstHandle.h"

#include <vector>

/// Keeps the video sink from leaking. From NULL to READY it takes references on its display and GL
/// contexts and forgets those it had, so every player would leave a GL context and its thread.
class SinkContexts
{
public:
    /// Before a change of state: notes what a sink in NULL still holds. Null is accepted.
    explicit SinkContexts(GstElement *sink);

    /// After the change: gives back what the sink has forgotten, if it has.
    void giveBack();

private:
    GstElement *const m_sink;
    std::vector<ObjectRef<GstObject>> m_held;
};

#endif
