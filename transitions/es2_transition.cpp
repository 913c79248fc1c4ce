#include "transitions/es2_transition.h"

#include "base/enumerants.h"
#include "base/output.h"
#include "exec/egl_names.h"
#include "exec/es2_names.h"
#include "exec/extension_resolver.h"
#include "exec/host_data.h"
#include "exec/name_calls.h"
#include "host/es2_host.h"
#include "host/es3_host.h"
#include "transitions/es2_transition_steps.h"
#include "transitions/host_bytes.h"
#include "transitions/table_sweep.h"

namespace kestrail {
namespace {

/// Vertex array objects are a part of ES3 and an extension of ES2, which a host may lack.
class CVertexArrayCalls {
public:
    explicit CVertexArrayCalls(bool es3) : m_es3(es3 ? GetEs3Host() : nullptr) {}

    bool CanGenerate() const { return m_es3 != nullptr || m_es2.glGenVertexArraysOES != nullptr; }
    void Generate(GLsizei count, GLuint* names) {
        if (m_es3 != nullptr) return m_es3->glGenVertexArrays(count, names);
        m_es2.glGenVertexArraysOES(count, names);
    }
    void Bind(GLuint name) {
        if (m_es3 != nullptr) return m_es3->glBindVertexArray(name);
        if (m_es2.glBindVertexArrayOES != nullptr) m_es2.glBindVertexArrayOES(name);
    }

private:
    SEs2Host& m_es2 = *GetEs2Host();
    SEs3Host* m_es3;
};

void SetAttributes(SEs2Host& host, CEs2Names& names, const SVertexArrayState& array) {
    for (GLuint i = 0; i < array.attributes.size(); ++i) {
        const SAttribPointerState& attribute = array.attributes[i];
        // Kept: the recorded index, where a draw's is translated; tools compare seeks.
        host.glBindBuffer(GL_ARRAY_BUFFER, names.Buffers().Get(attribute.buffer));
        if (attribute.size != 0 || attribute.type != 0) {
            host.glVertexAttribPointer(i, attribute.size, attribute.type, attribute.normalized,
                                       attribute.stride, AsPointer(attribute.pointer));
        }
        if (attribute.enabled != 0) {
            host.glEnableVertexAttribArray(i);
        } else {
            host.glDisableVertexAttribArray(i);
        }
    }
}

void SetStencil(SEs2Host& host, const CEs2State& state) {
    host.glStencilFuncSeparate(GL_FRONT, state.stencilFuncFront, state.stencilRefFront,
                               state.stencilValueMaskFront);
    host.glStencilFuncSeparate(GL_BACK, state.stencilFuncBack, state.stencilRefBack,
                               state.stencilValueMaskBack);
    host.glStencilMaskSeparate(GL_FRONT, state.stencilWriteMaskFront);
    host.glStencilMaskSeparate(GL_BACK, state.stencilWriteMaskBack);
    host.glStencilOpSeparate(GL_FRONT, state.stencilFailFront, state.stencilDepthFailFront,
                             state.stencilDepthPassFront);
    host.glStencilOpSeparate(GL_BACK, state.stencilFailBack, state.stencilDepthFailBack,
                             state.stencilDepthPassBack);
}

void SetPixelStore(SEs2Host& host, GLenum name, GLint value) {
    host.glPixelStorei(name, value);
    CEglNames{}.PixelStore().Set(name, value);
}

}  // namespace

void CheckTransitionError(const CEs2State& /*state*/) {
    SEs2Host& host = *GetEs2Host();
    for (int read = 0; read < 2; ++read) {
        const GLenum error = host.glGetError();
        if (error == GL_NO_ERROR) return;
        // Kept: two blanks, and at most two errors; readers match the line.
        output::Message("OGLES2 Error Code  0x%lx, Setting ContextState\n",
                        static_cast<unsigned long>(error));
    }
}

void TransitionBuffers(const CEs2State& target, const CEs2State& current) {
    if (target.buffers.SameAs(current.buffers)) return;
    SEs2Host& host = *GetEs2Host();
    CEs2Names names;
    TKeyIndex<SBufferState> known(*current.buffers);
    // Kept: none is deleted that the frame lacks; tools compare seeks.
    for (std::int32_t i = 0; i < target.buffers->Count(); ++i) {
        const std::uint32_t name = target.buffers->KeyAt(i);
        const SBufferState& buffer = ValueAt(*target.buffers, i);
        const SBufferState* old = known.FindValue(name, i);
        if (old != nullptr && old->data.Identity() == buffer.data.Identity()) continue;
        CHostBytes bytes;
        const GLuint live = LiveOrGenerated(names.Buffers(), name, host.glGenBuffers);
        host.glBindBuffer(buffer.target, live);
        host.glBufferData(buffer.target, static_cast<GLsizeiptr>(buffer.size),
                          bytes.Whole(buffer.data, buffer.size), buffer.usage);
        if (buffer.mapped != 0 && host.glMapBufferOES != nullptr) {
            host.glMapBufferOES(buffer.target, GL_WRITE_ONLY_OES);
        }
    }
}

void TransitionVertexArrays(const CEs2State& target) {
    const auto& arrays = *target.vertexArrays;
    SEs2Host& host = *GetEs2Host();
    CEs2Names names;
    CVertexArrayCalls calls(target.apiVersion == 3);
    for (std::int32_t i = 0; i < arrays.Count(); ++i) {
        const SVertexArrayState& array = *ValueAt(arrays, i);
        if (calls.CanGenerate()) {
            LiveOrGenerated(names.VertexArrays(), arrays.KeyAt(i),
                            [&](GLsizei count, GLuint* made) { calls.Generate(count, made); });
        }
        calls.Bind(names.VertexArrays().Get(arrays.KeyAt(i)));
        SetAttributes(host, names, array);
        host.glBindBuffer(GL_ARRAY_BUFFER, names.Buffers().Get(array.arrayBuffer));
        host.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, names.Buffers().Get(array.elementBuffer));
    }
    calls.Bind(names.VertexArrays().Get(target.currentVertexArray));
}

void TransitionScalars(const CEs2State& target) {
    SEs2Host& host = *GetEs2Host();
    host.glBlendEquationSeparate(target.blendEquationRgb, target.blendEquationAlpha);
    for (std::size_t i = 0; i < kEs2Capabilities.size(); ++i) {
        if (target.capabilities[i] != 0) {
            host.glEnable(kEs2Capabilities[i]);
        } else {
            host.glDisable(kEs2Capabilities[i]);
        }
    }
    host.glBlendFuncSeparate(target.blendSrcRgb, target.blendDstRgb, target.blendSrcAlpha,
                             target.blendDstAlpha);
    const auto& blend = target.blendColor;
    host.glBlendColor(blend[0], blend[1], blend[2], blend[3]);
    const auto& clear = target.clearColor;
    host.glClearColor(clear[0], clear[1], clear[2], clear[3]);
    host.glClearDepthf(target.clearDepth);
    host.glClearStencil(target.clearStencil);
    const auto& mask = target.colorMask;
    host.glColorMask(mask[0], mask[1], mask[2], mask[3]);
    host.glCullFace(target.cullFaceMode);
    host.glDepthFunc(target.depthFunc);
    host.glDepthMask(target.depthMask);
    host.glDepthRangef(target.depthRangeNear, target.depthRangeFar);
    CheckTransitionError(target);

    host.glFrontFace(target.frontFace);
    host.glHint(GL_GENERATE_MIPMAP_HINT, target.generateMipmapHint);
    SetPixelStore(host, GL_PACK_ALIGNMENT, target.packAlignment);
    SetPixelStore(host, GL_UNPACK_ALIGNMENT, target.unpackAlignment);
    host.glPolygonOffset(target.polygonOffsetFactor, target.polygonOffsetUnits);
    host.glSampleCoverage(target.sampleCoverageValue, target.sampleCoverageInvert);
    const auto& box = target.scissorBox;
    // Kept: a box of zeros stays behind; tools compare pictures of sought frames.
    if (box[0] != 0 || box[1] != 0 || box[2] != 0 || box[3] != 0) {
        host.glScissor(box[0], box[1], box[2], box[3]);
    }
    SetStencil(host, target);
    // Kept: never that of the surface, which need not have the size of the recording's.
    const auto& viewport = target.viewport;
    if ((viewport[2] != 0 || viewport[3] != 0) && target.boundFramebuffer != 0) {
        host.glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
        CEs2Names{}.ViewportDirty() = true;
    }
    CheckTransitionError(target);
}

void TransitionEs2State(CEs2State& target, const CEs2State& current) {
    CEs2Names names;
    EnsureExtensionResolver(names);
    CheckTransitionError(target);
    TransitionShaders(target, current);
    CheckTransitionError(target);
    TransitionPrograms(target, current);
    CheckTransitionError(target);
    TransitionTextures(target, current);
    CheckTransitionError(target);
    TransitionBuffers(target, current);
    CheckTransitionError(target);
    TransitionFramebuffers(target, current);
    CheckTransitionError(target);
    TransitionVertexArrays(target);
    CheckTransitionError(target);
    TransitionScalars(target);
}

}  // namespace kestrail
