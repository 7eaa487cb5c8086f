#ifndef EXITORDER_H
#define EXITORDER_H

// exit() runs handlers in reverse order of their registration, and finalizers of libraries among
// them.
//
// Without it: a process that calls exit() while a player plays crashes or hangs: the decoder or the
// GL driver, loaded after the library, is finalized while streaming threads still use it.
// Where: glibc's exit(), by the C++ ABI; Mesa and the plug-ins of GStreamer have finalizers and
// handlers that end what their threads use.
// Needed: where libraries have been loaded since the last registration; dl_iterate_phdr() tells.
// Can go: never while a process may exit with a player that plays.
// Test: exit_test, playing: exit() with a leaked application.

/// [gui] Registers `stopPlayers` again if libraries have been loaded since the last call. It may
/// run more than once.
void runBeforeLibrariesEnd(void (*stopPlayers)());

#endif
