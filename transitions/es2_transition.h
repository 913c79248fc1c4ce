// Brings the current ES2 or ES3 context of the host from one record to another: makes, uploads and
// deletes the objects that differ, and sets all other state. Objects that both records have in the
// same form keep their contents, which is what makes a seek affordable.
#pragma once

#include <cstdint>

#include "state/es2/es2_state.h"
#include "transitions/host_answers.h"

namespace kestrail {

/// Needs a current context. Errors of the host are printed and do not stop it. Gives back the
/// target's bound framebuffer, 0 where that went.
std::uint32_t TransitionEs2State(SSession& session, CHostAnswers& answers, const CEs2State& target,
                                 const CEs2State& current);

}  // namespace kestrail
