// Plays recorded EGL calls on the host: makes displays, surfaces and contexts anew and leaves the
// application's questions out.
#pragma once

#include "exec/player_state.h"

namespace kestrail {

/// Plays the call of `entry`, whose identifier is one of EGL. True when it was played or left out
/// on purpose. May throw what FindEglConfig throws.
bool PlayEglCall(SPlayerState& player, CCallEntry& entry);

/// Reads the host's error into `lastError`, and prints it unless it is EGL_SUCCESS. True when it
/// is.
bool CheckEglError(SPlayerState& player);

}  // namespace kestrail
