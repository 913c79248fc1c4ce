// Steps that the transitions of both APIs take alike, on the host of either.
#pragma once

#include "base/enumerants.h"
#include "exec/egl_names.h"
#include "exec/name_calls.h"
#include "state/context_state.h"
#include "transitions/host_bytes.h"

namespace kestrail {

template <typename Host>
void Switch(Host& host, GLenum capability, bool on) {
    if (on) {
        host.glEnable(capability);
    } else {
        host.glDisable(capability);
    }
}

template <typename Host>
void UploadBuffer(Host& host, TNameMap<std::uint32_t>& names, std::uint32_t name,
                  const SBufferState& buffer) {
    CHostBytes bytes;
    host.glBindBuffer(buffer.target, LiveOrGenerated(names, name, host.glGenBuffers));
    host.glBufferData(buffer.target, static_cast<GLsizeiptr>(buffer.size),
                      bytes.Whole(buffer.data, buffer.size), buffer.usage);
}

template <typename Host, typename State>
void SetClearValues(Host& host, const State& state) {
    const auto& color = state.clearColor;
    host.glClearColor(color[0], color[1], color[2], color[3]);
    host.glClearDepthf(state.clearDepth);
    host.glClearStencil(state.clearStencil);
}

template <typename Host, typename State>
void SetMasksAndDepth(Host& host, const State& state) {
    const auto& mask = state.colorMask;
    host.glColorMask(mask[0], mask[1], mask[2], mask[3]);
    host.glCullFace(state.cullFaceMode);
    host.glDepthFunc(state.depthFunc);
    host.glDepthMask(state.depthMask);
    host.glDepthRangef(state.depthRangeNear, state.depthRangeFar);
}

template <typename Host, typename State>
void SetAlignments(Host& host, CEglNames& names, const State& state) {
    const auto set = [&](GLenum name, GLint value) {
        host.glPixelStorei(name, value);
        names.PixelStore().Set(name, value);
    };
    set(GL_PACK_ALIGNMENT, state.packAlignment);
    set(GL_UNPACK_ALIGNMENT, state.unpackAlignment);
}

template <typename Host, typename State>
void SetOffsetAndCoverage(Host& host, const State& state) {
    host.glPolygonOffset(state.polygonOffsetFactor, state.polygonOffsetUnits);
    host.glSampleCoverage(state.sampleCoverageValue, state.sampleCoverageInvert);
}

}  // namespace kestrail
