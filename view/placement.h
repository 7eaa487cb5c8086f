#ifndef PLACEMENT_H
#define PLACEMENT_H

class MediaPlayerView;
class QQuickWidget;

// Where the video object sits. [gui] Each can run the host's code, which may delete the view: the
// caller holds no lock, and looks again afterwards.

/// Moves the host item's own parent item to (0, 0).
void moveHostItemToOrigin(const MediaPlayerView &view);

/// Puts the video object under the host item.
void attachVideoObject(MediaPlayerView &view);

/// Takes the video object out of the host's item tree; the view owns it meanwhile.
void parkVideoObject(MediaPlayerView &view);

/// Takes an attached video object out of its parent item and puts it under the host item.
void reseatVideoObject(MediaPlayerView &view);

/// Whether the video object is shown by this widget.
bool isShownBy(const MediaPlayerView &view, const QQuickWidget *widget);

/// Keeps a widget whose control is gone until no picture is left in it.
void leaveWidgetBehind(MediaPlayerView &view, QQuickWidget *widget);

/// Deletes the widgets that the picture has left. One that another player's picture is still in is
/// left to that player.
void dropWidgetsLeftBehind(MediaPlayerView &view);

#endif
