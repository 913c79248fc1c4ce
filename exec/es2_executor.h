// Plays recorded ES2 calls on the host.
#pragma once

#include "exec/player_state.h"

namespace kestrail {

/// Plays the call of `entry`, whose identifier is one of ES2. True when it was played or left out
/// on purpose.
bool PlayEs2Call(SPlayerState& player, CCallEntry& entry);

/// Reads the host's error into `lastError`, and prints it unless it is none. True when it is none.
bool CheckEs2Error(SPlayerState& player);

}  // namespace kestrail
