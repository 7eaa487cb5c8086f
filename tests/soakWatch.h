#ifndef SOAKWATCH_H
#define SOAKWATCH_H

#include "Player.h"

// A player may wait for state changes of the others, and idle threads of pools stay for 30 s.
constexpr int endingBound = 60'000; // ms

/// Keeps the steps, so that any failure, also a crash, a critical of GLib or a GUI thread that
/// hangs, prints the last hundred of them with the seed that brings them about again.
void startLog(unsigned seed);
[[gnu::format(printf, 1, 2)]] void logStep(const char *format, ...);
[[noreturn]] void fail(const char *why);

/// What must hold of a player at every moment.
void check(const Player &player);

/// What does not hold that must soon, when there is no more traffic; null when all does.
const char *unsettled(const Player &player);

/// Fails when a round leaves a GStreamer object, or more of the rest than those of the warm-up.
void checkLevels(bool warmUp);

#endif
