#include "RecordField.h"

#include <QtCore/QHash>

#include <algorithm>
#include <functional>
#include <utility>

/// Names and widths of a report's columns; a negative width stands for text.
static constexpr std::pair<const char *, int> reportColumns[] = {
    {"command", -14}, {"done", 4}, {"error", 5}, {"state", -8}, {"position", 10}, {"duration", 10}};

static QVariant toVariant(std::int8_t flag)
{
    return int(flag);
}

static QVariant toVariant(std::int64_t nanoseconds)
{
    return double(nanoseconds) / 1e9;
}

static QVariant toVariant(MediaPlayerView *view)
{
    return QLatin1String(view ? "set" : "null");
}

template <typename Number>
static QVariant toVariant(Number number)
{
    return number;
}

#define FIELD(name, kind)                                                                          \
    {                                                                                              \
#name, RecordField::kind,                                                                  \
            [](MediaPlayerParams & record) { return toVariant(readShared(record.name)); }          \
    }

std::span<const RecordField> RecordField::all()
{
    static const RecordField fields[] = {
        FIELD(state, State),
        FIELD(position, Nanoseconds),
        FIELD(duration, Nanoseconds),
        FIELD(command, Command),
        FIELD(execute, Number),
        FIELD(done, Number),
        FIELD(error, Number),
        FIELD(busy, Number),
        FIELD(attached, Number),
        FIELD(view, Text),
        {"fileName", Text,
         [](MediaPlayerParams &record) {
             const std::size_t length = qstrnlen(record.fileName, MediaPlayerFileNameSize);
             return QVariant(QString::fromUtf8(record.fileName, qsizetype(length)));
         }},
        FIELD(playState, State),
        FIELD(seekPosition, Nanoseconds),
        FIELD(volume, Number),
        FIELD(mute, Number),
        FIELD(keepAspectRatio, Number),
        FIELD(opacity, Number),
        FIELD(transformBit0, Number),
        FIELD(transformBit1, Number),
        FIELD(transformParam, Number),
        FIELD(cropLeft, Number),
        FIELD(cropTop, Number),
        FIELD(cropRight, Number),
        FIELD(cropBottom, Number),
        FIELD(pauseOnSave, Number),
        FIELD(resumeOnRestore, Number),
    };
    return fields;
}

#undef FIELD

const RecordField *RecordField::named(const QString &name)
{
    const auto fields = all();
    const auto found = std::find_if(fields.begin(), fields.end(), [&name](const RecordField &f) {
        return name == QLatin1String(f.name);
    });
    return found == fields.end() ? nullptr : &*found;
}

QVariant RecordField::value(MediaPlayerParams &record) const
{
    return kind == State ? QVariant(stateName(read(record).toInt())) : read(record);
}

QString RecordField::text(MediaPlayerParams &record) const
{
    const QVariant raw = read(record);
    switch (kind) {
    case Nanoseconds:
        if (raw.toDouble() < -1e9) // a client marks so what it has not heard of yet
            return QStringLiteral("unknown");
        return QString::number(raw.toDouble(), 'f', 3) + QStringLiteral(" s");
    case State:
        return stateName(raw.toInt());
    case Command:
        return commandName(raw.toInt());
    default:
        return raw.typeId() == QMetaType::Double ? QString::number(raw.toDouble()) : raw.toString();
    }
}

QString stateName(int state)
{
    static const char *const names[] = {"none", "null", "ready", "paused", "playing"};
    return state >= 0 && state <= MediaPlayerStatePlaying ? QLatin1String(names[state])
                                                          : QString::number(state);
}

QString commandName(int command)
{
    static const QHash<int, const char *> names = {{MediaPlayerCommandLoad, "load"},
                                                   {MediaPlayerCommandVolume, "volume"},
                                                   {MediaPlayerCommandPlayState, "play state"},
                                                   {MediaPlayerCommandMute, "mute"},
                                                   {MediaPlayerCommandSeek, "seek"},
                                                   {MediaPlayerCommandRebind, "rebind"},
                                                   {MediaPlayerCommandTransform, "transform"},
                                                   {MediaPlayerCommandCrop, "crop"},
                                                   {MediaPlayerCommandOpacity, "opacity"},
                                                   {MediaPlayerCommandKeepAspectRatio, "aspect"}};
    const char *name = names.value(command, "unknown");
    return QStringLiteral("%1 %2").arg(command).arg(QLatin1String(name));
}

static QString reportRow(const QString &label, const std::function<QString(const char *)> &cell)
{
    QString row = label.leftJustified(16);
    for (const auto &[name, width] : reportColumns)
        row += QLatin1Char(' ')
            + (width < 0 ? cell(name).leftJustified(-width) : cell(name).rightJustified(width));
    return row;
}

QString reportHeader()
{
    return reportRow(QStringLiteral("step"),
                     [](const char *name) { return QString::fromLatin1(name); });
}

QString reportLine(const QString &label, MediaPlayerParams &record)
{
    return reportRow(label, [&record](const char *name) {
        return RecordField::named(QLatin1String(name))->text(record);
    });
}
