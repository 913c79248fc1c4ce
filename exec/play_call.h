// Hands calls to the executors of their families.
#pragma once

#include "exec/player_state.h"

namespace kestrail {

/// Plays a call of whichever family. False for one that failed, and for one that no executor has.
/// Throws what playing it throws.
bool PlayCallOfFamily(SPlayerState& player, CCallEntry& call);

}  // namespace kestrail
