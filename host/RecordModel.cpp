#include "RecordModel.h"

void RecordModel::refresh()
{
    QStringList now;
    for (const RecordField &field : RecordField::all())
        now.append(field.text(record));
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

QHash<int, QByteArray> RecordModel::roleNames() const
{
    return {{Qt::UserRole, "name"}, {Qt::UserRole + 1, "value"}};
}
