#include "RecordModel.h"

#include <algorithm>

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

void RecordModel::setPlayer(Player *player)
{
    if (shown)
        disconnect(shown, nullptr, this, nullptr);
    shown = player;
    if (player)
        connect(player, &Player::polled, this, &RecordModel::refresh);
    refresh();
}

void RecordModel::refresh()
{
    QStringList now;
    for (const RecordField &field : RecordField::all())
        now.append(shown ? field.text(shown->fields()) : QString());
    if (now == texts)
        return;
    texts = now;
    Q_EMIT dataChanged(index(0, 1), index(rowCount() - 1, 1));
}

int RecordModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(RecordField::all().size());
}

int RecordModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant RecordModel::data(const QModelIndex &index, int role) const
{
    const bool wantsName = role == Qt::UserRole || (role == Qt::DisplayRole && index.column() == 0);
    if (wantsName)
        return QLatin1String(RecordField::all()[std::size_t(index.row())].name);
    if (role == Qt::DisplayRole || role == Qt::UserRole + 1)
        return texts.value(index.row());
    return {};
}

QVariant RecordModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return section == 0 ? tr("Field") : tr("Value");
}

QHash<int, QByteArray> RecordModel::roleNames() const
{
    return {{Qt::UserRole, "name"}, {Qt::UserRole + 1, "value"}};
}
