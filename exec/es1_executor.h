// Plays recorded ES1 calls on the host.
#pragma once

#include "exec/player_state.h"

namespace kestrail {

/// Plays the call of `entry`, whose identifier is one of ES1. True when it was played or left out
/// on purpose.
bool PlayEs1Call(SPlayerState& player, CCallEntry& entry);

/// Reads the host's error into `lastError`, without a word. True when it is none.
bool CheckEs1Error(SPlayerState& player);

}  // namespace kestrail
