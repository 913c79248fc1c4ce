#include <GLES2/gl2.h>

#include <algorithm>

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

std::uint8_t Flag(const TGLboolean& value) {
    return value.GetValue() != 0 ? 1 : 0;
}

}  // namespace

bool CEs2_glBlendColor_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.blendColor = {red.GetValue(), green.GetValue(), blue.GetValue(), alpha.GetValue()};
    return true;
}

bool CEs2_glBlendEquationSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.blendEquationRgb = modeRGB.GetValue();
    state.blendEquationAlpha = modeAlpha.GetValue();
    return true;
}

bool CEs2_glBlendFunc_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.blendSrcRgb = state.blendSrcAlpha = sfactor.GetValue();
    state.blendDstRgb = state.blendDstAlpha = dfactor.GetValue();
    return true;
}

bool CEs2_glBlendFuncSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.blendSrcRgb = sfactorRGB.GetValue();
    state.blendDstRgb = dfactorRGB.GetValue();
    state.blendSrcAlpha = sfactorAlpha.GetValue();
    state.blendDstAlpha = dfactorAlpha.GetValue();
    return true;
}

bool CEs2_glClearColor_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.clearColor = {red.GetValue(), green.GetValue(), blue.GetValue(), alpha.GetValue()};
    return true;
}

bool CEs2_glClearDepthf_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.clearDepth = depth.GetValue();
    return true;
}

bool CEs2_glClearStencil_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.clearStencil = s.GetValue();
    return true;
}

bool CEs2_glColorMask_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.colorMask = {Flag(red), Flag(green), Flag(blue), Flag(alpha)};
    return true;
}

bool CEs2_glCullFace_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.cullFaceMode = mode.GetValue();
    return true;
}

bool CEs2_glDepthFunc_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.depthFunc = func.GetValue();
    return true;
}

bool CEs2_glDepthMask_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.depthMask = Flag(flag);
    return true;
}

bool CEs2_glDepthRangef_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.depthRangeNear = zNear.GetValue();
    state.depthRangeFar = zFar.GetValue();
    return true;
}

bool CEs2_glDisable_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 0);
}

bool CEs2_glEnable_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 1);
}

bool CEs2_glFrontFace_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.frontFace = mode.GetValue();
    return true;
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

bool CEs2_glPolygonOffset_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.polygonOffsetFactor = factor.GetValue();
    state.polygonOffsetUnits = units.GetValue();
    return true;
}

bool CEs2_glSampleCoverage_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.sampleCoverageValue = value.GetValue();
    state.sampleCoverageInvert = Flag(invert);
    return true;
}

bool CEs2_glScissor_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.scissorBox = {x.GetValue(), y.GetValue(), width.GetValue(), height.GetValue()};
    return true;
}

bool CEs2_glViewport_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.viewport = {x.GetValue(), y.GetValue(), width.GetValue(), height.GetValue()};
    return true;
}

bool CEs2_glStencilFunc_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.stencilFuncFront = state.stencilFuncBack = func.GetValue();
    state.stencilRefFront = state.stencilRefBack = ref.GetValue();
    state.stencilValueMaskFront = state.stencilValueMaskBack = mask.GetValue();
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

bool CEs2_glStencilMask_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.stencilWriteMaskFront = state.stencilWriteMaskBack = mask.GetValue();
    return true;
}

bool CEs2_glStencilMaskSeparate_v1::UpdateState(CEs2State& state, SUpdates&) {
    const EFace which = FaceToWrite(face.GetValue());
    if (which == EFace::kNeither) return false;
    const bool front = which == EFace::kFront;
    (front ? state.stencilWriteMaskFront : state.stencilWriteMaskBack) = mask.GetValue();
    return true;
}

bool CEs2_glStencilOp_v1::UpdateState(CEs2State& state, SUpdates&) {
    state.stencilFailFront = state.stencilFailBack = fail.GetValue();
    state.stencilDepthFailFront = state.stencilDepthFailBack = zfail.GetValue();
    state.stencilDepthPassFront = state.stencilDepthPassBack = zpass.GetValue();
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
