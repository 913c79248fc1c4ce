// Brings the displays, surfaces and contexts of the host from those of one record to those of
// another.
#pragma once

#include <cstdint>

#include "state/egl/egl_state.h"
#include "transitions/host_answers.h"

namespace kestrail {

/// Makes what only `target` has, destroys what only `current` has, and makes the target's context
/// current on a display that was not. Errors of the host are dropped. Gives back the target's
/// current display, 0 where that went. May throw what the choice of a configuration throws.
std::uint32_t TransitionEglState(SSession& session, CHostAnswers& answers, const CEglState& target,
                                 const CEglState& current);

}  // namespace kestrail
