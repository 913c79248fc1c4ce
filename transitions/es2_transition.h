// Brings the current ES2 or ES3 context of the host from one record to another: makes, uploads and
// deletes the objects that differ, and sets all other state. Objects that both records have in the
// same form keep their contents, which is what makes a seek affordable.
#pragma once

#include "state/es2/es2_state.h"

namespace kestrail {

/// Needs a current context. Errors of the host are printed and do not stop it. Clears the target's
/// bound framebuffer when that framebuffer goes.
void TransitionEs2State(CEs2State& target, const CEs2State& current);

/// Reads and prints the host's error, and one more behind it.
void CheckTransitionError(const CEs2State& state);

}  // namespace kestrail
