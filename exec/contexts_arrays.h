// Draws in a context of the other API. Where the libraries of ES1 and ES2 lead to one driver, the
// context decides whose client arrays a draw reads, whichever of them it came through.
#pragma once

#include "exec/draw_indices.h"
#include "exec/player_state.h"

namespace kestrail {

/// Whether the context is one of ES1, in which no call of ES2 finds the arrays.
inline bool IsEs1Context(SPlayerState& player) {
    return player.eglNames.Context().version == 1;
}
/// Whether the context is one of ES2 or later, in which no call of ES1 finds the arrays.
inline bool IsEs2Context(SPlayerState& player) {
    return player.eglNames.Context().version > 1;
}

/// Whether all enabled client arrays of that API reach as far as a draw does; they stay as they
/// are.
bool Es1ArraysReach(SPlayerState& player, CCallEntry& entry, SVertices vertices);
bool Es2ArraysReach(SPlayerState& player, CCallEntry& entry, SVertices vertices);

}  // namespace kestrail
