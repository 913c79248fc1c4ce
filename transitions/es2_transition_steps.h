// The steps of an ES2 transition, in the order in which they depend on each other.
#pragma once

#include "state/es2/es2_state.h"

namespace kestrail {

void TransitionShaders(const CEs2State& target, const CEs2State& current);
/// Ends early at a program that the player has no record of.
void TransitionPrograms(const CEs2State& target, const CEs2State& current);
void TransitionTextures(const CEs2State& target, const CEs2State& current);
void TransitionBuffers(const CEs2State& target, const CEs2State& current);
void TransitionFramebuffers(CEs2State& target, const CEs2State& current);
void TransitionVertexArrays(const CEs2State& target);
void TransitionScalars(const CEs2State& target);

}  // namespace kestrail
