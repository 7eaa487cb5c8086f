#ifndef EXITORDER_H
#define EXITORDER_H

// exit() runs handlers and the finalizers of libraries in reverse order of their registration.
//
// Without it: a process that calls exit() while a player plays crashes or hangs: the decoder or the
// GL driver, loaded after the library, is finalized while streaming threads still use it.
// Where: glibc's exit(), as documented; Mesa and plug-ins of GStreamer have finalizers that end
// what their threads use. Seen on Debian 12 (Mesa 22.3) and testing (Mesa 26.1). Needed: where
// libraries have been loaded since the last registration; dl_iterate_phdr() tells. Can go: never
// while a process may exit with a player that plays. Test: exit_test, the static application.

/// [gui] Registers `stopPlayers` again if libraries have been loaded since the last call. It may
/// run more than once.
void runBeforeLibrariesEnd(void (*stopPlayers)());

#endif
