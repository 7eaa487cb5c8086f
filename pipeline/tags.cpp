#include "pipeline/tags.h"

#include "pipeline/GstHandle.h"
#include "pipeline/videoFilter.h"

#include <QtCore/QBuffer>
#include <QtCore/QThreadPool>
#include <QtGui/QImageReader>

#include <cstring>
#include <memory>
#include <utility>

namespace
{

constexpr int coverSize = 1024; // pixels, of the longer side

constexpr std::pair<const char *, QLatin1String> names[] = {
    {GST_TAG_TITLE, QLatin1String("title")},
    {GST_TAG_ARTIST, QLatin1String("contributingArtist")},
    {GST_TAG_PERFORMER, QLatin1String("leadPerformer")},
    {GST_TAG_COMPOSER, QLatin1String("composer")},
    {GST_TAG_ALBUM, QLatin1String("albumTitle")},
    {GST_TAG_ALBUM_ARTIST, QLatin1String("albumArtist")},
    {GST_TAG_TRACK_NUMBER, QLatin1String("trackNumber")},
    {GST_TAG_GENRE, QLatin1String("genre")},
    {GST_TAG_DATE, QLatin1String("date")},
    {GST_TAG_DATE_TIME, QLatin1String("date")},
    {GST_TAG_DESCRIPTION, QLatin1String("description")},
    {GST_TAG_COMMENT, QLatin1String("comment")},
    {GST_TAG_COPYRIGHT, QLatin1String("copyright")},
    {GST_TAG_ORGANIZATION, QLatin1String("publisher")},
    {GST_TAG_LANGUAGE_CODE, QLatin1String("language")},
    {GST_TAG_CONTAINER_FORMAT, QLatin1String("fileFormat")},
    {GST_TAG_AUDIO_CODEC, QLatin1String("audioCodec")},
    {GST_TAG_VIDEO_CODEC, QLatin1String("videoCodec")},
};

/// Numbers as they are, all else as GStreamer writes it: dates are text, since some name a year and
/// nothing else.
QVariant valueOf(const GstTagList *tags, const char *tag)
{
    const GValue *const value = gst_tag_list_get_value_index(tags, tag, 0);
    if (!value)
        return {};
    if (G_VALUE_HOLDS_UINT(value))
        return g_value_get_uint(value);
    if (G_VALUE_HOLDS_STRING(value))
        return QString::fromUtf8(g_value_get_string(value));
    const GlibText text(G_VALUE_HOLDS(value, GST_TYPE_DATE_TIME) ? gst_date_time_to_iso8601_string(
                            static_cast<GstDateTime *>(g_value_get_boxed(value)))
                                                                 : gst_value_serialize(value));
    return QString::fromUtf8(text.get());
}

bool isOfVideo(GstMessage *message)
{
    GstObject *const sink = GST_MESSAGE_SRC(message);
    const char *const kind = GST_IS_ELEMENT(sink)
        ? gst_element_get_metadata(GST_ELEMENT(sink), GST_ELEMENT_METADATA_KLASS)
        : nullptr;
    return kind && std::strstr(kind, "Video");
}

/// How the picture still has to be turned to stand upright: not at all where the chain does it.
QVariant orientationOf(const GstTagList *tags, GstMessage *message)
{
    const QVariant told = valueOf(tags, GST_TAG_IMAGE_ORIENTATION);
    const ObjectRef<GstObject> pipeline(gst_object_get_parent(GST_MESSAGE_SRC(message)));
    const ObjectRef<GstElement> turner(
        told.isValid() && GST_IS_BIN(pipeline.get())
            ? gst_bin_get_by_name(GST_BIN(pipeline.get()), videoTurnerName)
            : nullptr);
    return turner ? QVariant(QStringLiteral("rotate-0")) : told;
}

QImage decode(GstBuffer *buffer)
{
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_READ))
        return {};
    QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(map.data), qsizetype(map.size));
    QBuffer device(&bytes);
    QImageReader reader(&device);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (qMax(size.width(), size.height()) > coverSize)
        reader.setScaledSize(size.scaled(coverSize, coverSize, Qt::KeepAspectRatio));
    const QImage image = reader.read();
    gst_buffer_unmap(buffer, &map);
    if (qMax(image.width(), image.height()) <= coverSize)
        return image;
    // Not every format tells its size before it is read.
    return image.scaled(coverSize, coverSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

/// The later of them win.
void addTo(QVariantMap &values, const std::array<QVariantMap, 3> &said)
{
    QVariantMap metaData = values.value(QStringLiteral("metaData")).toMap();
    for (const QVariantMap &part : said)
        metaData.insert(part);
    values[QStringLiteral("metaData")] = metaData;
}

void passOnCover(MessageWatch &watch, const GstTagList *tags)
{
    GstSample *sample = nullptr;
    if (!gst_tag_list_get_sample(tags, GST_TAG_IMAGE, &sample)
        && !gst_tag_list_get_sample(tags, GST_TAG_PREVIEW_IMAGE, &sample))
        return;
    const std::shared_ptr<GstSample> picture(sample, gst_sample_unref);
    GstBuffer *const buffer = gst_sample_get_buffer(sample);
    if (!buffer || !watch.replaceCover(buffer))
        return;
    QThreadPool::globalInstance()->start([relay = watch.relay, media = watch.media, picture] {
        const QImage image = decode(gst_sample_get_buffer(picture.get()));
        if (!image.isNull())
            relay->change(media, [&image](QVariantMap &values) {
                addTo(values, {QVariantMap {{QStringLiteral("coverArtImage"), image}}});
            });
    });
}

} // namespace

void publishTags(MessageWatch &watch, GstMessage *message)
{
    GstTagList *list = nullptr;
    gst_message_parse_tag(message, &list);
    const std::unique_ptr<GstTagList, decltype(&gst_tag_list_unref)> tags(list, gst_tag_list_unref);
    const bool ofVideo = isOfVideo(message);
    const bool ofAll = gst_tag_list_get_scope(list) == GST_TAG_SCOPE_GLOBAL;

    QVariantMap said;
    for (const auto &[tag, key] : names) {
        if (const QVariant value = valueOf(list, tag); value.isValid())
            said[key] = value;
    }
    if (const QVariant bits = valueOf(list, GST_TAG_BITRATE); bits.isValid() && !ofAll)
        said[ofVideo ? QStringLiteral("videoBitRate") : QStringLiteral("audioBitRate")] = bits;
    const QVariant orientation = ofVideo ? orientationOf(list, message) : QVariant();

    watch.relay->change(watch.media, [&](QVariantMap &values) {
        watch.said[ofAll ? 2U : std::size_t(ofVideo)].insert(said);
        addTo(values, watch.said);
        if (orientation.isValid())
            values[QStringLiteral("imageOrientation")] = orientation;
    });
    passOnCover(watch, list);
}
