#ifndef RECORDMODEL_H
#define RECORDMODEL_H

#include "Player.h"

#include <QtCore/QAbstractTableModel>

#include <span>

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

/// The fields of one player's record, two columns, as they are now.
class RecordModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setPlayer(Player *player);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    void refresh();

    QPointer<Player> shown;
    QStringList texts;
};

#endif
