#include "pipeline/sinkContexts.h"

#include <gst/gl/gl.h>

#include <atomic>

namespace
{

struct Kind {
    const char *contextType;
    const char *field;
};

constexpr Kind itemsContext = {"gst.gl.local_context", "context"};
constexpr Kind kinds[] = {{GST_GL_DISPLAY_CONTEXT_TYPE, GST_GL_DISPLAY_CONTEXT_TYPE},
                          {"gst.gl.app_context", "context"},
                          itemsContext};

bool isInNull(GstElement *element)
{
    GST_OBJECT_LOCK(element);
    const bool inNull = GST_STATE(element) == GST_STATE_NULL;
    GST_OBJECT_UNLOCK(element);
    return inNull;
}

/// What the sink would share with its neighbours, with a reference, or null.
ObjectRef<GstObject> heldBy(GstElement *sink, const Kind &kind)
{
    GstObject *held = nullptr;
    GstQuery *query = gst_query_new_context(kind.contextType);
    const ObjectRef<GstPad> entry(gst_element_get_static_pad(sink, "sink"));
    GstContext *context = nullptr;
    if (entry && gst_pad_query(entry.get(), query))
        gst_query_parse_context(query, &context);
    const GstStructure *fields = context ? gst_context_get_structure(context) : nullptr;
    if (const GValue *value = fields ? gst_structure_get_value(fields, kind.field) : nullptr)
        held = GST_OBJECT(g_value_dup_object(value));
    gst_query_unref(query);
    return ObjectRef<GstObject>(held);
}

} // namespace

// A streaming thread that links the sink may be raising it: it is in NULL until then, but holds
// what is new already. The change that follows waits for that thread as well.
SinkContexts::SinkContexts(GstElement *sink) : m_sink(sink)
{
    if (!sink)
        return;
    GST_STATE_LOCK(sink);
    m_wasInNull = isInNull(sink);
    for (const Kind &kind : kinds) {
        auto held = m_wasInNull ? heldBy(sink, kind) : nullptr;
        if (held)
            m_held.push_back(std::move(held));
    }
    GST_STATE_UNLOCK(sink);
}

void SinkContexts::giveBack(GstObject *&itemsOwn)
{
    if (!m_wasInNull || isInNull(m_sink))
        return;
    for (const auto &held : m_held)
        gst_object_unref(held.get());
    GstObject *const now = heldBy(m_sink, itemsContext).release();
    if (!now)
        return;
    const ObjectRef<GstObject> before {std::atomic_ref(itemsOwn).exchange(now)};
    if (before && before.get() != now)
        gst_object_unref(before.get());
}
