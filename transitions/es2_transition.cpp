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
#include "transitions/context_steps.h"
#include "transitions/es2_transition_steps.h"
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
        (attribute.enabled != 0 ? host.glEnableVertexAttribArray
                                : host.glDisableVertexAttribArray)(i);
    }
}

void SetStencil(SEs2Host& host, const CEs2State& state) {
    const SStencilState& front = state.stencilFront;
    const SStencilState& back = state.stencilBack;
    host.glStencilFuncSeparate(GL_FRONT, front.func, front.ref, front.valueMask);
    host.glStencilFuncSeparate(GL_BACK, back.func, back.ref, back.valueMask);
    host.glStencilMaskSeparate(GL_FRONT, front.writeMask);
    host.glStencilMaskSeparate(GL_BACK, back.writeMask);
    host.glStencilOpSeparate(GL_FRONT, front.fail, front.depthFail, front.depthPass);
    host.glStencilOpSeparate(GL_BACK, back.fail, back.depthFail, back.depthPass);
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
        UploadBuffer(host, names.Buffers(), name, buffer);
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
        Switch(host, kEs2Capabilities[i], target.capabilities[i] != 0);
    }
    host.glBlendFuncSeparate(target.blendSrcRgb, target.blendDstRgb, target.blendSrcAlpha,
                             target.blendDstAlpha);
    const auto& blend = target.blendColor;
    host.glBlendColor(blend[0], blend[1], blend[2], blend[3]);
    SetClearValues(host, target);
    SetMasksAndDepth(host, target);
    CheckTransitionError(target);

    host.glFrontFace(target.frontFace);
    host.glHint(GL_GENERATE_MIPMAP_HINT, target.generateMipmapHint);
    SetAlignments(host, target);
    SetOffsetAndCoverage(host, target);
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
