#ifndef COMMANDS_H
#define COMMANDS_H

#include "view/MediaPlayerView.h"

/// [gui] Carries out the command that the record holds, answers it and lowers `execute`. Needs a
/// record. False when the host's code has deleted the view inside the command.
[[nodiscard]] bool carryOutCommand(MediaPlayerView &view) EXCLUDES(view.sequence, view.lock);

#endif
