#ifndef DEVELOPER_H
#define DEVELOPER_H

#include "RecordModel.h"

#include <MediaPlayer/Player.h>

#include <QtCore/QStringListModel>
#include <QtCore/QTimer>

/// What the developer's panel shows: the record, the last answers, and the switch of the library's
/// trace.
class Developer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QAbstractItemModel *record READ record CONSTANT)
    Q_PROPERTY(QAbstractItemModel *answers READ answers CONSTANT)
    Q_PROPERTY(bool watching READ isWatching WRITE setWatching NOTIFY changed)
    Q_PROPERTY(bool tracing READ isTracing WRITE setTracing NOTIFY changed)

public:
    explicit Developer(MediaPlayer::Player &player);

    QAbstractItemModel *record() { return &theRecord; }
    QAbstractItemModel *answers() { return &theAnswers; } ///< the last one first

    bool isWatching() const { return looks.isActive(); }
    void setWatching(bool on); ///< whether record() follows the record
    bool isTracing() const;
    void setTracing(bool on); ///< of the library, on standard output

Q_SIGNALS:
    void changed();

private:
    MediaPlayer::Player &player;
    RecordModel theRecord;
    QStringListModel theAnswers;
    QTimer looks;
};

#endif
