#ifndef LOOK_H
#define LOOK_H

#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtGui/QPalette>

/// The light look that both hosts share.
namespace look
{

inline constexpr QColor accent {0x25, 0x63, 0xeb};
inline constexpr QColor warning {0xd9, 0x77, 0x06}; ///< too loud, cannot be played
inline constexpr QColor track {0xd5, 0xda, 0xe3}; ///< what of a bar is not filled
inline constexpr QColor line {0x33, 0x3d, 0x4d}; ///< of icons
inline constexpr QColor disabled {0xa7, 0xae, 0xba};

QPalette palette();

/// "play", "pause", "stop", "previous", "next", "volume", "muted", "list", "fullscreen", "window",
/// "menu", "note". Drawn here, so that both hosts show the same and need no files.
QImage image(const QString &name, int pixels, const QColor &colour = line);
QIcon icon(const QString &name);

} // namespace look

#endif
