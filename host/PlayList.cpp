#include "PlayList.h"

#include "Look.h"
#include "mediaFiles.h"

#include <QtGui/QFont>

int PlayList::append(const QList<QUrl> &media)
{
    const int first = count();
    if (media.isEmpty())
        return first;
    beginInsertRows({}, first, first + int(media.size()) - 1);
    for (const QUrl &url : media)
        entries.append({url, nameOf(url), {}});
    endInsertRows();
    Q_EMIT countChanged();
    return first;
}

void PlayList::remove(int row)
{
    if (row < 0 || row >= count())
        return;
    beginRemoveRows({}, row, row);
    entries.removeAt(row);
    endRemoveRows();
    if (row == currentRow)
        currentRow = -1;
    else if (row < currentRow)
        --currentRow;
    Q_EMIT currentChanged();
    Q_EMIT countChanged();
}

void PlayList::setCurrent(int row)
{
    const int before = std::exchange(currentRow, row);
    changed(before);
    changed(row);
    Q_EMIT currentChanged();
}

void PlayList::setTitle(int row, const QString &title)
{
    if (row < 0 || row >= count() || title.isEmpty())
        return;
    entries[row].title = title;
    changed(row);
}

void PlayList::setProblem(int row, const QString &problem)
{
    if (row < 0 || row >= count())
        return;
    entries[row].problem = problem;
    changed(row);
}

void PlayList::changed(int row)
{
    if (row >= 0 && row < count())
        Q_EMIT dataChanged(index(row), index(row));
}

int PlayList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant PlayList::data(const QModelIndex &index, int role) const
{
    const Entry &entry = entries[index.row()];
    switch (role) {
    case Title:
        return entry.title;
    case Problem:
        return entry.problem;
    case Current:
        return index.row() == currentRow;
    case Qt::ForegroundRole:
        return entry.problem.isEmpty() ? QVariant() : QVariant(look::warning);
    case Qt::FontRole: {
        QFont font;
        font.setBold(index.row() == currentRow);
        return font;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> PlayList::roleNames() const
{
    return {{Title, "title"}, {Problem, "problem"}, {Current, "current"}};
}
