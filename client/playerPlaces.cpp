// Where a player shows its picture, and how it ends.

#include "PlayerPrivate.h"
#include "PluginFunctions.h"

#include <QtQuick/QQuickWindow>

#include <algorithm>

namespace MediaPlayer
{

Place::~Place()
{
    setPlayer(nullptr);
}

void Place::setPlayer(Player *player)
{
    Player *const before = m_player;
    if (before == player)
        return;
    m_player = player;
    if (before)
        before->d->removePlace(this);
    if (player)
        player->d->addPlace(this);
}

void Place::changed()
{
    if (m_player)
        m_player->d->placesChanged();
}

QSize Place::pictureSize() const
{
    return m_player ? m_player->videoSize() : QSize();
}

PlayerPrivate::PlayerPrivate(Player *player) : q(player)
{
    connect(&link, &RecordLink::looked, this, &PlayerPrivate::look);
}

void PlayerPrivate::addPlace(Place *place)
{
    m_places.append(place);
    placesChanged();
}

void PlayerPrivate::removePlace(Place *place)
{
    m_places.removeOne(place);
    placesChanged();
}

void PlayerPrivate::placesChanged()
{
    const auto best = std::find_if(m_places.crbegin(), m_places.crend(),
                                   [](const Place *place) { return place->isReady(); });
    Place *const next = best == m_places.crend() ? nullptr : *best;
    if (next != m_current) {
        park();
        m_current = next;
        if (next && link.isAlive())
            enter(next);
    }
    noticePicture();
    noticeHidden();
    advance();
}

// The plug-in's player ends with the window that it was made with, and must not end with one of the
// application's, which come and go.
void PlayerPrivate::makeView()
{
    if (const QString &problem = plugin().problem; !problem.isEmpty())
        return fail({Player::ResourceError, problem});
    if (!m_viewWindow)
        m_viewWindow = std::make_unique<QQuickWindow>();
    qstrncpy(link.record().fileName, m_resolved.uri.constData(), MediaPlayerFileNameSize);
    link.awaitNews();
    link.record().error = 0;
    m_toLoad = false;
    m_patience = 0;
    if (m_current && enter(m_current))
        return;
    BasicWidget *const control =
        plugin().createQml(m_viewWindow.get(), nullptr, nullptr, 0, 0, 0, 0);
    link.registerAt(control);
    control->saveObject(); // which deletes it
}

bool PlayerPrivate::enter(Place *place)
{
    m_control = place->makeControl(m_viewWindow.get());
    if (!m_control)
        return false;
    link.registerAt(m_control);
    m_control->SysNativeControlShow(1);
    m_wasPlaced = true;
    place->pictureChanged();
    return true;
}

void PlayerPrivate::park()
{
    if (m_current && m_control)
        m_current->releaseControl(m_control);
    m_control = nullptr;
}

void PlayerPrivate::noticePicture()
{
    if (!m_current || !isOpen())
        return;
    MediaPlayerParams &record = link.record();
    const int flips = m_current->flips();
    if (flips != record.transformBit0 + 2 * record.transformBit1) {
        record.transformBit0 = flips & 1;
        record.transformBit1 = (flips >> 1) & 1;
        changeSetting(MediaPlayerCommandTransform);
    }
}

void PlayerPrivate::noticeHidden()
{
    if (m_current)
        m_whenHidden = m_current->whenHidden;
    const bool hidden = m_wasPlaced && !(m_current && m_current->isVisible());
    if (hidden == m_hidden)
        return;
    m_hidden = hidden;
    if (hidden && m_whenHidden == Player::Pause && m_intent == Player::PlayingState) {
        m_intent = Player::PausedState;
        m_pausedByHiding = true;
    } else if (!hidden && std::exchange(m_pausedByHiding, false)) {
        m_intent = Player::PlayingState;
    }
}

PlayerPrivate::~PlayerPrivate()
{
    park();
    m_current = nullptr;
    if (!link.isAlive())
        return;
    // Whatever control made the plug-in's player: it belongs to this window now, and ends with it.
    // The record names nothing, or it would be loaded once more.
    link.record().fileName[0] = 0;
    link.registerAt(plugin().createQml(m_viewWindow.get(), nullptr, nullptr, 0, 0, 0, 0));
    m_viewWindow.reset();
}

} // namespace MediaPlayer
