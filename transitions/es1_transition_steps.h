// The parts of an ES1 transition, in their order.
#pragma once

#include "state/es1/es1_state.h"
#include "transitions/host_answers.h"

namespace kestrail {

/// The two records and what the parts of a transition work with.
struct SEs1Transition {
    SSession& session;
    CHostAnswers& answers;
    const CEs1State& target;
    const CEs1State* current = nullptr;
    SEs1Host& host = session.hosts.Es1();
    CEs1Names& names = session.es1Names;

    // Kept: binds the recorded names; tools compare seeks.
    void BindRecordedBuffers() const;
    void SelectPalette(std::int32_t index) const {
        if (host.glCurrentPaletteMatrixOES == nullptr) return;
        host.glCurrentPaletteMatrixOES(static_cast<std::uint32_t>(index));
    }
};

void TransitionEs1Textures(SEs1Transition& t);
void TransitionEs1Units(SEs1Transition& t);
void TransitionEs1Buffers(SEs1Transition& t);
/// Blending to the viewport.
void TransitionEs1Scalars(SEs1Transition& t);
void TransitionEs1Matrices(SEs1Transition& t);
void TransitionEs1ClientArrays(SEs1Transition& t);
void TransitionEs1Framebuffers(SEs1Transition& t);

}  // namespace kestrail
