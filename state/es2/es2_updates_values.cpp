#include "base/enumerants.h"
#include "generated/calls/es2_calls.h"
#include "state/es2/es2_updates.h"

namespace kestrail {
namespace {

bool SetCapability(CEs2State& state, std::uint32_t capability, std::uint8_t value) {
    const std::size_t place = PlaceIn(kEs2Capabilities, capability);
    if (place < kEs2Capabilities.size()) state.capabilities[place] = value;
    return true;
}

/// Null for no face.
SStencilState* FaceToWrite(CEs2State& state, std::uint32_t face) {
    // Kept: both faces at once count as the front; tools compare pictures of sought frames.
    if (face == GL_FRONT || face == GL_FRONT_AND_BACK) return &state.stencilFront;
    return face == GL_BACK ? &state.stencilBack : nullptr;
}

}  // namespace

bool CEs2_glDisable_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 0);
}

bool CEs2_glEnable_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 1);
}

bool CEs2_glHint_v1::UpdateState(CEs2State& state, SUpdates&) {
    if (target.GetValue() == GL_GENERATE_MIPMAP_HINT) state.generateMipmapHint = mode.GetValue();
    return true;
}

bool CEs2_glStencilFuncSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    SStencilState* written = FaceToWrite(state, face.GetValue());
    if (written == nullptr) return false;
    written->func = func.GetValue();
    written->ref = ref.GetValue();
    written->valueMask = mask.GetValue();
    return true;
}

bool CEs2_glStencilMaskSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    SStencilState* written = FaceToWrite(state, face.GetValue());
    if (written == nullptr) return false;
    written->writeMask = mask.GetValue();
    return true;
}

bool CEs2_glStencilOpSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    SStencilState* written = FaceToWrite(state, face.GetValue());
    if (written == nullptr) return false;
    written->fail = sfail.GetValue();
    written->depthFail = dpfail.GetValue();
    written->depthPass = dppass.GetValue();
    return true;
}

}  // namespace kestrail
