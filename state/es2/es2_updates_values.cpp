#include <algorithm>

#include "base/enumerants.h"
#include "generated/calls/es2_calls.h"
#include "state/es2/es2_state.h"

namespace kestrail {
namespace {

bool SetCapability(CEs2State& state, std::uint32_t capability, std::uint8_t value) {
    const auto* found = std::find(kEs2Capabilities.begin(), kEs2Capabilities.end(), capability);
    if (found != kEs2Capabilities.end()) {
        state.capabilities[static_cast<std::size_t>(found - kEs2Capabilities.begin())] = value;
    }
    return true;
}

// Kept: both faces at once count as the front; tools compare pictures of sought frames.
enum class EFace { kFront, kBack, kNeither };

EFace FaceToWrite(std::uint32_t face) {
    if (face == GL_FRONT || face == GL_FRONT_AND_BACK) return EFace::kFront;
    return face == GL_BACK ? EFace::kBack : EFace::kNeither;
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

bool CEs2_glPixelStorei_v1::UpdateState(CEs2State& state, SUpdates&) {
    if (pname.GetValue() == GL_PACK_ALIGNMENT) state.packAlignment = param.GetValue();
    if (pname.GetValue() == GL_UNPACK_ALIGNMENT) state.unpackAlignment = param.GetValue();
    return true;
}

bool CEs2_glStencilFuncSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    const EFace which = FaceToWrite(face.GetValue());
    if (which == EFace::kNeither) return false;
    const bool front = which == EFace::kFront;
    (front ? state.stencilFuncFront : state.stencilFuncBack) = func.GetValue();
    (front ? state.stencilRefFront : state.stencilRefBack) = ref.GetValue();
    (front ? state.stencilValueMaskFront : state.stencilValueMaskBack) = mask.GetValue();
    return true;
}

bool CEs2_glStencilMaskSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    const EFace which = FaceToWrite(face.GetValue());
    if (which == EFace::kNeither) return false;
    const bool front = which == EFace::kFront;
    (front ? state.stencilWriteMaskFront : state.stencilWriteMaskBack) = mask.GetValue();
    return true;
}

bool CEs2_glStencilOpSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    const EFace which = FaceToWrite(face.GetValue());
    if (which == EFace::kNeither) return false;
    const bool front = which == EFace::kFront;
    (front ? state.stencilFailFront : state.stencilFailBack) = sfail.GetValue();
    (front ? state.stencilDepthFailFront : state.stencilDepthFailBack) = dpfail.GetValue();
    (front ? state.stencilDepthPassFront : state.stencilDepthPassBack) = dppass.GetValue();
    return true;
}

}  // namespace kestrail
