#ifndef RECORDFIELD_H
#define RECORDFIELD_H

#include "MediaPlayerParams.h"

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <atomic>
#include <span>

/// Reads a field that the plug-in may be writing on a thread of its own.
template <typename T>
T readShared(T &field)
{
    return std::atomic_ref<T>(field).load(std::memory_order_relaxed);
}

/// One field of the record, for people and for scripts.
struct RecordField {
    enum Kind { Number, Nanoseconds, State, Command, Text };
    const char *name;
    Kind kind;
    QVariant (*read)(MediaPlayerParams &record);

    /// A number (times in seconds) or a text.
    QVariant value(MediaPlayerParams &record) const;
    /// The same as a person would write it.
    QString text(MediaPlayerParams &record) const;

    static std::span<const RecordField> all();
    static const RecordField *named(const QString &name);
};

QString stateName(int state); ///< "null", "ready", "paused", "playing"; else the number
QString commandName(int command);

/// A line of a table of records: a label, and the fields that tell how a player stands.
QString reportLine(const QString &label, MediaPlayerParams &record);
QString reportHeader();

#endif
