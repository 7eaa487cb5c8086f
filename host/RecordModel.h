#ifndef RECORDMODEL_H
#define RECORDMODEL_H

#include "RecordField.h"

#include <QtCore/QAbstractTableModel>
#include <QtCore/QStringList>

/// The fields of a record, two columns, as of the last refresh().
class RecordModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit RecordModel(MediaPlayerParams &theRecord) : record(theRecord) { }

    void refresh();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    MediaPlayerParams &record;
    QStringList texts;
};

#endif
