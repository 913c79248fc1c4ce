// Plays recorded calls of the entry points that ES3 adds to ES2.
#pragma once

#include "exec/player_state.h"

namespace kestrail {

/// Plays the call of `entry`, whose identifier is one of ES3. True when it was played or left out
/// on purpose. A call that failed when it was recorded fails here.
bool PlayEs3Call(SPlayerState& player, CCallEntry& entry);

}  // namespace kestrail
