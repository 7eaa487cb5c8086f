// How the native control is made, moved, hidden and destroyed, and how a player ends.

#include "Player.h"

void Player::setControlFactory(ControlFactory factory)
{
    makeControl = std::move(factory);
}

void Player::createControl()
{
    if (control || !makeControl)
        return;
    const bool newPlayer = !isAlive();
    control = makeControl();
    if (!control)
        return;
    // Without a player the registration makes one and loads fileName; else the player that the
    // record has goes on in the new control.
    char key[] = "RegisterParameter";
    control->SysNativeControlSetSettings(key, record.get());
    if (newPlayer)
        reapplySettings();
    showControl(true);
}

void Player::destroyControl()
{
    if (!control)
        return;
    control->SysNativeControlShow(0);
    // Takes the picture out of the host's item before that can be deleted. In a Qt Quick host the
    // player lives on; in a widget host it goes with its control.
    control->saveObject();
    control->SysNativeControlDestroy();
    Q_EMIT controlChanged();
}

void Player::showControl(bool show)
{
    shown = show;
    if (control)
        control->SysNativeControlShow(show ? 1 : 0);
    Q_EMIT controlChanged();
}

void Player::moveControl(const QRect &place)
{
    if (control)
        control->SysNativeControlMove(place.left(), place.top(), place.right(), place.bottom());
}

void Player::end()
{
    ending = true;
    continueEnding();
}

// A player ends when its picture is deleted with the place it is in. A parked picture is in no
// place, so it is brought back first.
void Player::continueEnding()
{
    if (!isAlive()) {
        if (!std::exchange(released, true))
            Q_EMIT placeReleased();
        ending = false;
        deleteLater();
        return;
    }
    if (released)
        return;
    createControl();
    if (record->attached != 0) {
        released = true;
        Q_EMIT placeReleased();
    } else if (!isShown()) {
        showControl(true);
    }
}
