// Brings the current ES1 context of the host from one record to another: makes and uploads the
// textures and buffers that differ, then sets all of the fixed-function state.
#pragma once

#include "state/es1/es1_state.h"
#include "transitions/host_answers.h"

namespace kestrail {

/// Needs a current context. A null `current` stands for a context without any objects. Reads no
/// errors of the host.
void TransitionEs1State(SSession& session, CHostAnswers& answers, const CEs1State& target,
                        const CEs1State* current);

}  // namespace kestrail
