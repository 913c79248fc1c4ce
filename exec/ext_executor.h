// Plays recorded extension calls on the host.
#pragma once

#include "exec/player_state.h"

namespace kestrail {

/// Plays the call of `entry`, whose identifier is one of the extensions, through the entries of the
/// API that was current when it was recorded. True when it was played, left out on purpose, or has
/// no entry on this host, which is warned of.
bool PlayExtCall(SPlayerState& player, CCallEntry& entry);

}  // namespace kestrail
