// The calls of OpenGL ES 1.1 that set plain values of the record.
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_numbers.h"
#include "state/es1/es1_state.h"

namespace kestrail {
namespace {

template <typename Value>
std::uint8_t Flag(const Value& value) {
    return value.GetValue() != 0 ? 1 : 0;
}

template <typename Call>
bool SetAlphaFunc(CEs1State& state, const Call& call) {
    state.alphaFunc = call.func.GetValue();
    state.alphaRef = Number(call.ref);
    return true;
}

template <typename Call>
SVector4 ColorOf(const Call& call) {
    return {Number(call.red), Number(call.green), Number(call.blue), Number(call.alpha)};
}

template <typename Equation>
bool SetClipPlane(CEs1State& state, std::uint32_t plane, const Equation& equation) {
    constexpr std::uint32_t kClipPlane0 = 12288;
    const std::uint32_t index = plane - kClipPlane0;
    const auto* elements = equation.GetRawArray();
    if (index >= state.clipPlanes.size() || elements == nullptr) return false;
    state.clipPlaneIndex = plane;
    for (std::size_t i = 0; i < 4; ++i) {
        if constexpr (std::is_same_v<typename Equation::ValueType, float>) {
            state.clipPlanes[index][i] = elements[i];
        } else {
            state.clipPlanes[index][i] = FixedValue(elements[i]);
        }
    }
    return true;
}

template <typename Call>
bool SetTexCoord(CEs1State& state, std::uint32_t texture, const Call& call) {
    const std::int32_t unit = CEs1State::UnitOf(texture);
    if (unit < 0) return false;
    const auto index = static_cast<std::size_t>(unit);
    const SVector4 coord = {Number(call.s), Number(call.t), Number(call.r), Number(call.q)};
    if (!SameBits((*state.currentTexCoord)[index], coord)) {
        state.currentTexCoord.Write()[index] = coord;
    }
    return true;
}

bool SetCapability(CEs1State& state, std::uint32_t capability, std::uint8_t enabled) {
    constexpr std::uint32_t kTexture2D = 3553;
    if (capability == kTexture2D) {
        const std::int32_t unit = state.ActiveUnit();
        if (unit < 0) return false;
        state.texture2DEnabled[static_cast<std::size_t>(unit)] = enabled;
        return true;
    }
    const int place = PlaceIn(kEs1Capabilities, capability);
    if (place >= 0) state.capabilities[static_cast<std::size_t>(place)] = enabled;
    return true;
}

bool SetPointParameter(CEs1State& state, std::uint32_t pname, const SParameters& parameters) {
    const int place = PlaceIn(kPointParameters, pname);
    if (place < 0) return true;
    return parameters.Store(state.pointParameters[static_cast<std::size_t>(place)].data(), 3);
}

}  // namespace

bool CEs1_glAlphaFunc_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetAlphaFunc(state, *this);
}
bool CEs1_glAlphaFuncx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetAlphaFunc(state, *this);
}

bool CEs1_glBlendFunc_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.blendSrc = sfactor.GetValue();
    state.blendDst = dfactor.GetValue();
    return true;
}

bool CEs1_glClearColor_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.clearColor = ColorOf(*this);
    return true;
}

bool CEs1_glClearColorx_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.clearColor = ColorOf(*this);
    return true;
}

bool CEs1_glClearDepthf_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.clearDepth = Number(depth);
    return true;
}

bool CEs1_glClearDepthx_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.clearDepth = Number(depth);
    return true;
}

bool CEs1_glClearStencil_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.clearStencil = s.GetValue();
    return true;
}

bool CEs1_glClipPlanef_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetClipPlane(state, p.GetValue(), eqn);
}

bool CEs1_glClipPlanex_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetClipPlane(state, plane.GetValue(), equation);
}

bool CEs1_glColor4f_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.currentColor = ColorOf(*this);
    return true;
}

bool CEs1_glColor4x_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.currentColor = ColorOf(*this);
    return true;
}

bool CEs1_glColor4ub_v1::UpdateState(CEs1State& state, SUpdates&) {
    const auto part = [](const TGLubyte& value) {
        return static_cast<float>(value.GetValue()) / 255.0F;
    };
    state.currentColor = {part(red), part(green), part(blue), part(alpha)};
    return true;
}

bool CEs1_glColorMask_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.colorMask = {Flag(red), Flag(green), Flag(blue), Flag(alpha)};
    return true;
}

bool CEs1_glCullFace_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.cullFaceMode = mode.GetValue();
    return true;
}

bool CEs1_glDepthFunc_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.depthFunc = func.GetValue();
    return true;
}

bool CEs1_glDepthMask_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.depthMask = Flag(flag);
    return true;
}

bool CEs1_glDepthRangef_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.depthRangeNear = Number(zNear);
    state.depthRangeFar = Number(zFar);
    return true;
}

bool CEs1_glDepthRangex_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.depthRangeNear = Number(n);
    state.depthRangeFar = Number(f);
    return true;
}

bool CEs1_glEnable_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 1);
}

bool CEs1_glDisable_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 0);
}

bool CEs1_glFrontFace_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.frontFace = mode.GetValue();
    return true;
}

bool CEs1_glHint_v1::UpdateState(CEs1State& state, SUpdates&) {
    const int place = PlaceIn(kEs1Hints, target.GetValue());
    if (place >= 0) state.hints[static_cast<std::size_t>(place)] = mode.GetValue();
    return true;
}

bool CEs1_glLineWidth_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.lineWidth = Number(width);
    return true;
}

bool CEs1_glLineWidthx_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.lineWidth = Number(width);
    return true;
}

bool CEs1_glLogicOp_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.logicOp = opcode.GetValue();
    return true;
}

bool CEs1_glMultiTexCoord4f_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexCoord(state, target.GetValue(), *this);
}

bool CEs1_glMultiTexCoord4x_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexCoord(state, texture.GetValue(), *this);
}

bool CEs1_glNormal3f_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.currentNormal = {Number(nx), Number(ny), Number(nz)};
    return true;
}

bool CEs1_glNormal3x_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.currentNormal = {Number(nx), Number(ny), Number(nz)};
    return true;
}

bool CEs1_glPixelStorei_v1::UpdateState(CEs1State& state, SUpdates&) {
    constexpr std::uint32_t kPackAlignment = 3333;
    constexpr std::uint32_t kUnpackAlignment = 3317;
    if (pname.GetValue() == kPackAlignment) state.packAlignment = param.GetValue();
    if (pname.GetValue() == kUnpackAlignment) state.unpackAlignment = param.GetValue();
    return true;
}

bool CEs1_glPointParameterf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glPointParameterfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glPointParameterx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glPointParameterxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glPointSize_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.pointSize = Number(size);
    return true;
}

bool CEs1_glPointSizex_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.pointSize = Number(size);
    return true;
}

bool CEs1_glPolygonOffset_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.polygonOffsetFactor = Number(factor);
    state.polygonOffsetUnits = Number(units);
    return true;
}

bool CEs1_glPolygonOffsetx_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.polygonOffsetFactor = Number(factor);
    state.polygonOffsetUnits = Number(units);
    return true;
}

bool CEs1_glSampleCoverage_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.sampleCoverageValue = Number(value);
    state.sampleCoverageInvert = Flag(invert);
    return true;
}

bool CEs1_glSampleCoveragex_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.sampleCoverageValue = Number(value);
    state.sampleCoverageInvert = Flag(invert);
    return true;
}

bool CEs1_glScissor_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.scissorBox = {x.GetValue(), y.GetValue(), width.GetValue(), height.GetValue()};
    return true;
}

bool CEs1_glStencilFunc_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.stencilFunc = func.GetValue();
    state.stencilRef = ref.GetValue();
    state.stencilValueMask = mask.GetValue();
    return true;
}

bool CEs1_glStencilMask_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.stencilWriteMask = mask.GetValue();
    return true;
}

bool CEs1_glStencilOp_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.stencilFail = fail.GetValue();
    state.stencilDepthFail = zfail.GetValue();
    state.stencilDepthPass = zpass.GetValue();
    return true;
}

bool CEs1_glViewport_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.viewport = {x.GetValue(), y.GetValue(), width.GetValue(), height.GetValue()};
    return true;
}

}  // namespace kestrail
