// Brings the displays, surfaces and contexts of the host from those of one record to those of
// another.
#pragma once

#include <cstdint>

#include "state/egl/egl_state.h"

namespace kestrail {

/// Makes what only `target` has, destroys what only `current` has, and makes the target's context
/// current on a display that was not. Errors of the host are dropped. Clears the target's current
/// display when that display goes. May throw what FindEglConfig throws.
void TransitionEglState(CEglState& target, std::uint32_t frame, const CEglState& current);

}  // namespace kestrail
