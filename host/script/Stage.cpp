#include "Stage.h"

#include <QtCore/QFileInfo>
#include <QtCore/QUrl>
#include <QtGui/QResizeEvent>

#include <algorithm>
#include <cmath>

void Stage::setCurrent(int row)
{
    if (row >= 0 && row < count())
        currentRow = row;
}

void Stage::addPlayer()
{
    auto *player = new Player(this);
    const QPointer<QObject> place = makePlace();
    connect(player, &Player::placeReleased, this, [this, player] { leave(player); });
    connect(player, &Player::refused, this, [this](const QString &why) { refusalText = why; });
    connect(player, &Player::ended, this, [this, player] {
        if (player == this->player())
            playEntry(entryRow + 1);
    });
    player->setControlFactory([this, place] { return place ? makeControl(place) : nullptr; });
    seats.append({player, place});
    currentRow = count() - 1;
    layOut();
    player->createControl();
}

void Stage::removePlayer()
{
    player()->end();
}

void Stage::leave(Player *player)
{
    const auto seat = std::find_if(seats.begin(), seats.end(),
                                   [player](const Seat &s) { return s.player == player; });
    delete seat->place;
    seats.erase(seat);
    currentRow = std::clamp(currentRow - 1, 0, count() - 1);
    layOut();
}

void Stage::layOut()
{
    constexpr int gap = 4;
    const int columns = std::max(1, int(std::ceil(std::sqrt(double(count())))));
    const int rows = (count() + columns - 1) / columns;
    for (int i = 0; i < count(); ++i) {
        const QSize cell(windowSize.width() / columns, windowSize.height() / rows);
        const QRect rect(QPoint(i % columns * cell.width(), i / columns * cell.height()), cell);
        movePlace(seats[i].place, rect.adjusted(0, 0, -gap, -gap));
        seats[i].player->moveControl(QRect(QPoint(), rect.size() - QSize(gap, gap)));
    }
}

bool Stage::eventFilter(QObject *window, QEvent *event)
{
    if (event->type() == QEvent::Resize) {
        windowSize = static_cast<QResizeEvent *>(event)->size();
        layOut();
    }
    return QObject::eventFilter(window, event);
}

void Stage::open(const QString &uri)
{
    entries.append(uri);
    playEntry(int(entries.size()) - 1);
}

void Stage::playEntry(int row)
{
    if (row < 0 || row >= entries.size() || !player())
        return;
    entryRow = row;
    player()->loadAndPlay(entries[row]);
}

QString uriOf(const QString &fileOrUri)
{
    const QFileInfo file(fileOrUri);
    if (!file.exists())
        return fileOrUri;
    return QString::fromLatin1(QUrl::fromLocalFile(file.absoluteFilePath()).toEncoded());
}
