// Brings the current ES1 context of the host from one record to another: makes and uploads the
// textures and buffers that differ, then sets all of the fixed-function state.
#pragma once

#include "state/es1/es1_state.h"

namespace kestrail {

/// Needs a current context. A null `current` stands for a context without any objects. Writes the
/// live names of vertex arrays into the target. Reads no errors of the host.
void TransitionEs1State(CEs1State& target, const CEs1State* current);

}  // namespace kestrail
