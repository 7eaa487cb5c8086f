#ifndef MISSING_H
#define MISSING_H

#include <QtCore/QList>

#include <gst/gst.h>

#include <initializer_list>
#include <utility>

/// Decoders of a format are not installed while this object lives.
class Missing
{
public:
    explicit Missing(std::initializer_list<const char *> factories)
    {
        for (const char *name : factories) {
            GstElementFactory *const factory = gst_element_factory_find(name);
            if (!factory)
                continue;
            m_ranks.append({factory, gst_plugin_feature_get_rank(GST_PLUGIN_FEATURE(factory))});
            gst_plugin_feature_set_rank(GST_PLUGIN_FEATURE(factory), GST_RANK_NONE);
        }
    }
    ~Missing()
    {
        for (const auto &[factory, rank] : m_ranks) {
            gst_plugin_feature_set_rank(GST_PLUGIN_FEATURE(factory), rank);
            gst_object_unref(factory);
        }
    }

private:
    QList<std::pair<GstElementFactory *, guint>> m_ranks;
};

#endif
