#ifndef STAGE_H
#define STAGE_H

#include "Player.h"
#include "PluginLibrary.h"

#include <QtCore/QStringList>
#include <QtGui/QImage>

/// What a script works on: players, each in a place of its own in the grid of one window, one of
/// which is the current one; and a play list. Each toolkit has its own kind of window and places.
class Stage : public QObject
{
    Q_OBJECT

public:
    explicit Stage(const PluginLibrary &library) : plugin(library) { }

    virtual void resize(QSize size) = 0;
    virtual QImage picture() = 0; ///< of the window, as a user sees it

    Player *player() const { return seats.value(currentRow).player; } ///< null when there is none
    int count() const { return int(seats.size()); }
    int current() const { return currentRow; }
    void setCurrent(int row); ///< does nothing when there is no such player
    void addPlayer(); ///< and makes it the current one
    void removePlayer(); ///< the current one

    void open(const QString &uri); ///< appends it to the play list and plays it
    void playEntry(int row);
    QString refusal() const { return refusalText; } ///< why load() did not take an address

    void setTrace(bool on) { writeSwitch(plugin.enableDebug, on); }
    void setWorkaround(bool on) { writeSwitch(plugin.enableWorkaround, on); }

protected:
    virtual QObject *makePlace() = 0; ///< in the window
    virtual void movePlace(QObject *place, const QRect &rect) = 0;
    virtual BasicWidget *makeControl(QObject *place) = 0;

    /// Watches the window, whose places follow its size.
    bool eventFilter(QObject *window, QEvent *event) override;

    const PluginLibrary &plugin;

private:
    struct Seat {
        Player *player = nullptr;
        QPointer<QObject> place;
    };

    void leave(Player *player);
    void layOut();

    QList<Seat> seats;
    QSize windowSize;
    QStringList entries;
    QString refusalText;
    int currentRow = -1;
    int entryRow = -1;
};

/// The address of an existing file as a URI; any other text unchanged.
QString uriOf(const QString &fileOrUri);

#endif
