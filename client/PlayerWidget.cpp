#include <MediaPlayer/PlayerWidget.h>

#include "Layout.h"
#include "Place.h"
#include "PluginFunctions.h"

#include <MediaPlayer/BasicWidget.h>

#include <QtCore/QEvent>

#include <atomic>

namespace MediaPlayer
{

class WidgetPlace : public Place
{
public:
    explicit WidgetPlace(PlayerWidget *widget) : q(widget) { }
    ~WidgetPlace() override;

    bool isReady() const override { return true; }
    bool isVisible() const override { return q->isVisible(); }
    BasicWidget *makeControl(QQuickWindow *) override;
    void releaseControl(BasicWidget *released) override;
    void pictureChanged() override;

    void show(Player *player);
    void prepareControl();
    using Place::changed;
    using Place::pictureSize;

    PlayerWidget *const q;
    std::unique_ptr<Player> own;
    QPointer<BasicWidget> control;
    QPointer<QWidget> surface; ///< the control's own widget
    Qt::AspectRatioMode mode = Qt::KeepAspectRatio;
    QMargins margins;
    Qt::WindowFlags flagsBefore; ///< before the full screen
    QPoint posBefore;
    bool wasFullScreen = false;
};

WidgetPlace::~WidgetPlace()
{
    setPlayer(nullptr);
}

void WidgetPlace::show(Player *given)
{
    if (!given && !own)
        own = std::make_unique<Player>();
    setPlayer(given ? given : own.get());
    if (given)
        own.reset();
}

// A window that gets its first quick widget when it is shown already is made anew, and flickers. So
// the control is made before.
void WidgetPlace::prepareControl()
{
    if (control || !plugin().create)
        return;
    const QWidgetList before = q->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    control = plugin().create(q, 0, 0, q->width() - 1, q->height() - 1);
    for (QWidget *child : q->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (!before.contains(child))
            surface = child;
    }
    if (!surface)
        return;
    surface->setAcceptDrops(false);
    surface->setAttribute(Qt::WA_TransparentForMouseEvents);
    surface->setFocusPolicy(Qt::NoFocus);
    surface->lower();
    pictureChanged();
}

BasicWidget *WidgetPlace::makeControl(QQuickWindow *)
{
    prepareControl();
    return control;
}

// The switch makes the plug-in's player outlive its control. It is the process's, so it is raised
// for this one call only.
void WidgetPlace::releaseControl(BasicWidget *released)
{
    released->SysNativeControlShow(0);
    released->saveObject();
    const std::atomic_ref outlives(*plugin().enableWorkaround);
    const unsigned char before = outlives.exchange(1);
    released->SysNativeControlDestroy();
    outlives.store(before);
    if (surface)
        surface->deleteLater();
}

void WidgetPlace::pictureChanged()
{
    if (!control)
        return;
    const QRect place = placeOf(pictureSize(), q->size(), mode, margins).toAlignedRect();
    control->SysNativeControlMove(place.left(), place.top(), place.right(), place.bottom());
    q->updateGeometry();
}

PlayerWidget::PlayerWidget(QWidget *parent)
    : QWidget(parent), d(std::make_unique<WidgetPlace>(this))
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Shadow);
    QPalette black = palette();
    black.setColor(QPalette::Shadow, Qt::black);
    setPalette(black);
    d->show(nullptr);
}

PlayerWidget::~PlayerWidget() = default;

Player *PlayerWidget::player() const
{
    return d->player();
}

void PlayerWidget::setPlayer(Player *player)
{
    if (player ? player == d->player() : d->own != nullptr)
        return;
    if (d->player())
        d->player()->disconnect(this);
    d->show(player);
    if (player)
        connect(player, &QObject::destroyed, this, [this] { setPlayer(nullptr); });
    Q_EMIT playerChanged();
}

Qt::AspectRatioMode PlayerWidget::aspectRatioMode() const
{
    return d->mode;
}

void PlayerWidget::setAspectRatioMode(Qt::AspectRatioMode mode)
{
    if (mode == d->mode)
        return;
    d->mode = mode;
    d->pictureChanged();
    Q_EMIT aspectRatioModeChanged(mode);
}

// The way that QVideoWidget goes, so that layouts find the widget as it was.
void PlayerWidget::setFullScreen(bool fullScreen)
{
    if (fullScreen == isFullScreen())
        return;
    constexpr Qt::WindowFlags own = Qt::Window | Qt::SubWindow;
    if (fullScreen) {
        d->flagsBefore = windowFlags() & own;
        d->posBefore = pos();
        setWindowFlags((windowFlags() | Qt::Window) & ~Qt::SubWindow);
        showFullScreen();
    } else {
        setWindowFlags((windowFlags() & ~own) | d->flagsBefore);
        showNormal();
        move(d->posBefore);
    }
}

Player::WhenHidden PlayerWidget::whenHidden() const
{
    return d->whenHidden;
}

void PlayerWidget::setWhenHidden(Player::WhenHidden whenHidden)
{
    if (whenHidden == d->whenHidden)
        return;
    d->whenHidden = whenHidden;
    d->changed();
    Q_EMIT whenHiddenChanged();
}

QMargins PlayerWidget::cropMargins() const
{
    return d->margins;
}

void PlayerWidget::setCropMargins(const QMargins &margins)
{
    if (margins == d->margins)
        return;
    d->margins = margins;
    d->pictureChanged();
    Q_EMIT cropMarginsChanged();
}

QSize PlayerWidget::sizeHint() const
{
    const QSize picture = d->pictureSize();
    return picture.isEmpty() ? QSize(320, 240) : picture;
}

bool PlayerWidget::event(QEvent *event)
{
    const bool done = QWidget::event(event);
    switch (event->type()) {
    case QEvent::Polish:
        d->prepareControl();
        break;
    case QEvent::Resize:
        d->pictureChanged();
        break;
    case QEvent::Show:
    case QEvent::Hide:
        d->changed();
        break;
    case QEvent::WindowStateChange:
        if (std::exchange(d->wasFullScreen, isFullScreen()) != isFullScreen())
            Q_EMIT fullScreenChanged(isFullScreen());
        break;
    default:
        break;
    }
    return done;
}

} // namespace MediaPlayer
