#include "transitions/es2_transition.h"

#include "base/enumerants.h"
#include "exec/host_data.h"
#include "exec/name_calls.h"
#include "transitions/context_steps.h"
#include "transitions/es2_transition_steps.h"
#include "transitions/table_sweep.h"

namespace kestrail {
namespace {

/// Vertex array objects are a part of ES3 and an extension of ES2, which a host may lack.
class CVertexArrayCalls {
public:
    explicit CVertexArrayCalls(SEs2Transition& t)
        : m_es2(t.host), m_es3(t.target.apiVersion == 3 ? &t.session.hosts.Es3() : nullptr) {}

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
    SEs2Host& m_es2;
    SEs3Host* m_es3;
};

void SetAttributes(SEs2Transition& t, const SVertexArrayState& array) {
    SEs2Host& host = t.host;
    for (GLuint i = 0; i < array.attributes.size(); ++i) {
        const SAttribPointerState& attribute = array.attributes[i];
        // Kept: the recorded index, where a draw's is translated; tools compare seeks.
        host.glBindBuffer(GL_ARRAY_BUFFER, t.names.Buffers().Get(attribute.buffer));
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

void CheckTransitionError(SEs2Transition& t) {
    for (int read = 0; read < 2; ++read) {
        const GLenum error = t.answers.Es2Error();
        if (error == GL_NO_ERROR) return;
        // Kept: two blanks, and at most two errors; readers match the line.
        t.session.diagnostics.Message("OGLES2 Error Code  0x%lx, Setting ContextState\n",
                                      static_cast<unsigned long>(error));
    }
}

void TransitionBuffers(SEs2Transition& t) {
    const CEs2State& target = t.target;
    if (target.buffers.SameAs(t.current.buffers)) return;
    SEs2Host& host = t.host;
    TKeyIndex<SBufferState> known(*t.current.buffers);
    // Kept: none is deleted that the frame lacks; tools compare seeks.
    for (std::int32_t i = 0; i < target.buffers->Count(); ++i) {
        const std::uint32_t name = target.buffers->KeyAt(i);
        const SBufferState& buffer = ValueAt(*target.buffers, i);
        const SBufferState* old = known.FindValue(name, i);
        if (old != nullptr && old->data.Identity() == buffer.data.Identity()) continue;
        UploadBuffer(host, t.names.Buffers(), name, buffer);
    }
}

void TransitionVertexArrays(SEs2Transition& t) {
    const auto& arrays = *t.target.vertexArrays;
    SEs2Host& host = t.host;
    CEs2Names& names = t.names;
    CVertexArrayCalls calls(t);
    for (std::int32_t i = 0; i < arrays.Count(); ++i) {
        const SVertexArrayState& array = *ValueAt(arrays, i);
        if (calls.CanGenerate()) {
            LiveOrGenerated(names.VertexArrays(), arrays.KeyAt(i),
                            [&](GLsizei count, GLuint* made) { calls.Generate(count, made); });
        }
        calls.Bind(names.VertexArrays().Get(arrays.KeyAt(i)));
        SetAttributes(t, array);
        host.glBindBuffer(GL_ARRAY_BUFFER, names.Buffers().Get(array.arrayBuffer));
        host.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, names.Buffers().Get(array.elementBuffer));
    }
    calls.Bind(names.VertexArrays().Get(t.target.currentVertexArray));
}

void TransitionScalars(SEs2Transition& t) {
    const CEs2State& target = t.target;
    SEs2Host& host = t.host;
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
    CheckTransitionError(t);

    host.glFrontFace(target.frontFace);
    host.glHint(GL_GENERATE_MIPMAP_HINT, target.generateMipmapHint);
    SetAlignments(host, t.session.eglNames, target);
    SetOffsetAndCoverage(host, target);
    const auto& box = target.scissorBox;
    // Kept: a box of zeros stays behind; tools compare pictures of sought frames.
    if (box[0] != 0 || box[1] != 0 || box[2] != 0 || box[3] != 0) {
        host.glScissor(box[0], box[1], box[2], box[3]);
    }
    SetStencil(host, target);
    // Kept: never that of the surface, which need not have the size of the recording's.
    const auto& viewport = target.viewport;
    if ((viewport[2] != 0 || viewport[3] != 0) && t.boundFramebuffer != 0) {
        host.glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
        t.names.ViewportDirty() = true;
    }
    CheckTransitionError(t);
}

std::uint32_t TransitionEs2State(SSession& session, CHostAnswers& answers, const CEs2State& target,
                                 const CEs2State& current) {
    SEs2Transition t{session, answers, target, current};
    answers.FindEs2Extensions();
    for (const auto step :
         {&TransitionShaders, &TransitionPrograms, &TransitionTextures, &TransitionBuffers,
          &TransitionFramebuffers, &TransitionVertexArrays, &TransitionScalars}) {
        CheckTransitionError(t);
        step(t);
    }
    return t.boundFramebuffer;
}

}  // namespace kestrail
