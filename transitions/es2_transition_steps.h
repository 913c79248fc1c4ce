// The steps of an ES2 transition, in the order in which they depend on each other.
#pragma once

#include "state/es2/es2_state.h"
#include "transitions/host_answers.h"

namespace kestrail {

/// The two records and what the steps of a transition work with.
struct SEs2Transition {
    SSession& session;
    CHostAnswers& answers;
    const CEs2State& target;
    const CEs2State& current;
    SEs2Host& host = session.hosts.Es2();
    CEs2Names& names = session.es2Names;
    /// The target's, 0 once that framebuffer is gone.
    std::uint32_t boundFramebuffer = target.boundFramebuffer;
};

/// Reads and prints the host's error, and one more behind it.
void CheckTransitionError(SEs2Transition& t);
void TransitionShaders(SEs2Transition& t);
/// Ends early at a program that the player has no record of.
void TransitionPrograms(SEs2Transition& t);
void TransitionTextures(SEs2Transition& t);
void TransitionBuffers(SEs2Transition& t);
void TransitionFramebuffers(SEs2Transition& t);
void TransitionVertexArrays(SEs2Transition& t);
void TransitionScalars(SEs2Transition& t);

}  // namespace kestrail
