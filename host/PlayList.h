#ifndef PLAYLIST_H
#define PLAYLIST_H

#include <QtCore/QAbstractListModel>
#include <QtCore/QUrl>

/// What is played one after the other. Of the entries one is the current one, which the player has.
class PlayList : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int current READ current NOTIFY currentChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { Title = Qt::DisplayRole, Problem = Qt::ToolTipRole, Current = Qt::UserRole };

    using QAbstractListModel::QAbstractListModel;

    int append(const QList<QUrl> &media); ///< the row of the first
    void remove(int row);

    int count() const { return int(entries.size()); }
    int current() const { return currentRow; } ///< -1: none
    void setCurrent(int row);
    QUrl media(int row) const { return entries.value(row).media; }
    QString title(int row) const { return entries.value(row).title; }
    void setTitle(int row, const QString &title);
    void setProblem(int row, const QString &problem); ///< why it cannot be played

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void currentChanged();
    void countChanged();

private:
    struct Entry {
        QUrl media;
        QString title;
        QString problem;
    };

    void changed(int row);

    QList<Entry> entries;
    int currentRow = -1;
};

#endif
