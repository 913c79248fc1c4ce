#include <cstring>

#include "base/enumerants.h"
#include "generated/calls/es2_calls.h"
#include "state/es2/es2_updates.h"

namespace kestrail {
namespace {

/// The buffer bound to a target; null for a target that has none.
const std::uint32_t* BoundBuffer(const CEs2State& state, std::uint32_t target) {
    const SVertexArrayState& array = state.CurrentVertexArray();
    if (target == GL_ARRAY_BUFFER) return &array.arrayBuffer;
    return target == GL_ELEMENT_ARRAY_BUFFER ? &array.elementBuffer : nullptr;
}

SFramebufferState* WriteFramebuffer(CEs2State& state) {
    if (state.boundFramebuffer == 0) return nullptr;
    SFramebufferState& framebuffer = state.framebuffers.Write().GetOrCreate(state.boundFramebuffer);
    framebuffer.name = state.boundFramebuffer;
    return &framebuffer;
}

bool IsColorAttachment(std::uint32_t attachment) {
    return attachment >= GL_COLOR_ATTACHMENT0 && attachment <= GL_COLOR_ATTACHMENT15;
}

bool IsAttachment(std::uint32_t attachment) {
    return attachment == GL_DEPTH_ATTACHMENT || attachment == GL_STENCIL_ATTACHMENT ||
           attachment == GL_DEPTH_STENCIL_ATTACHMENT || IsColorAttachment(attachment);
}

SAttachmentState& Attachment(SFramebufferState& framebuffer, std::uint32_t attachment) {
    if (attachment == GL_DEPTH_ATTACHMENT) return framebuffer.depth;
    if (attachment == GL_STENCIL_ATTACHMENT) return framebuffer.stencil;
    if (attachment == GL_DEPTH_STENCIL_ATTACHMENT) return framebuffer.depthStencil;
    const std::size_t index = attachment - GL_COLOR_ATTACHMENT0;
    std::vector<SAttachmentState>& colors = framebuffer.colors.Write();
    if (index >= colors.size()) colors.resize(index + 1);
    return colors[index];
}

/// The attribute of the vertex array in use as it stands; a default one where there is none yet.
const SAttribPointerState& AttribPointer(const CEs2State& state, std::uint32_t index) {
    static const SAttribPointerState s_none;
    const auto& attributes = state.CurrentVertexArray().attributes;
    return index < attributes.size() ? attributes[index] : s_none;
}

SAttribPointerState& WriteAttribPointer(CEs2State& state, std::uint32_t index) {
    auto& attributes = state.WriteCurrentVertexArray().attributes;
    if (index >= attributes.size()) attributes.resize(index + 1);
    return attributes[index];
}

bool SetAttribEnabled(CEs2State& state, std::uint32_t index, std::uint8_t enabled) {
    if (index >= SVertexArrayState::kMaxAttributes) return false;
    const auto& known = state.CurrentVertexArray().attributes;
    if (index >= known.size() || known[index].enabled != enabled) {
        WriteAttribPointer(state, index).enabled = enabled;
    }
    return true;
}

}  // namespace

bool CEs2_glBindBuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = buffer.GetValue();
    const std::uint32_t* bound = BoundBuffer(state, target.GetValue());
    if (bound == nullptr) return false;
    if (*bound == name && state.HasCurrentVertexArray()) return true;
    SVertexArrayState& array = state.WriteCurrentVertexArray();
    (target.GetValue() == GL_ARRAY_BUFFER ? array.arrayBuffer : array.elementBuffer) = name;
    return true;
}

bool CEs2_glBufferData_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetBufferData(state.buffers, BoundBuffer(state, target.GetValue()), *this);
}

bool CEs2_glBufferSubData_v1::UpdateState(CEs2State& state, SUpdates& updates) {
    return ApplySubData(state.buffers, BoundBuffer(state, target.GetValue()), offset.GetValue(),
                        size.GetValue(), data, updates);
}

bool CEs2_glDeleteBuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    return EraseRecords(state.buffers, NamesOf(buffers));
}

bool CEs2_glBindFramebuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    return BindRecord(state.framebuffers, state.boundFramebuffer, framebuffer.GetValue());
}

bool CEs2_glFramebufferRenderbuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    if (target.GetValue() != GL_FRAMEBUFFER || !IsAttachment(attachment.GetValue())) return false;
    SFramebufferState* bound = WriteFramebuffer(state);
    if (bound == nullptr) return false;
    Attachment(*bound, attachment.GetValue()) = {renderbuffer.GetValue(), 0, 0, GL_RENDERBUFFER};
    return true;
}

bool CEs2_glFramebufferTexture2D_v1::UpdateState(CEs2State& state, SUpdates&) {
    if (!IsAttachment(attachment.GetValue())) return false;
    SFramebufferState* bound = WriteFramebuffer(state);
    if (bound == nullptr) return false;
    const std::uint32_t face = textarget.GetValue() == GL_TEXTURE_2D ? 0 : textarget.GetValue();
    Attachment(*bound, attachment.GetValue()) = {texture.GetValue(), level.GetValue(), face,
                                                 GL_TEXTURE};
    return true;
}

bool CEs2_glGenFramebuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    return MakeRecords(state.framebuffers, NamesOf(framebuffers));
}

bool CEs2_glDeleteFramebuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    return EraseRecords(state.framebuffers, state.boundFramebuffer, NamesOf(framebuffers));
}

bool CEs2_glBindRenderbuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    return BindRecord(state.renderbuffers, state.boundRenderbuffer, renderbuffer.GetValue());
}

bool CEs2_glRenderbufferStorage_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetRenderbufferStorage(state, *this);
}

bool CEs2_glGenRenderbuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    return MakeRecords(state.renderbuffers, NamesOf(renderbuffers));
}

bool CEs2_glDeleteRenderbuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    return EraseRecords(state.renderbuffers, state.boundRenderbuffer, NamesOf(renderbuffers));
}

bool CEs2_glEnableVertexAttribArray_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribEnabled(state, index.GetValue(), 1);
}

bool CEs2_glDisableVertexAttribArray_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetAttribEnabled(state, index.GetValue(), 0);
}

bool CEs2_glVertexAttribPointer_v1::UpdateState(CEs2State& state, SUpdates&) {
    if (index.GetValue() >= SVertexArrayState::kMaxAttributes) return false;
    const SAttribPointerState& held = AttribPointer(state, index.GetValue());
    SAttribPointerState wanted;
    wanted.enabled = held.enabled;
    wanted.normalized = normalized.GetValue() != 0 ? 1 : 0;
    wanted.size = size.GetValue();
    wanted.type = type.GetValue();
    wanted.stride = stride.GetValue();
    wanted.pointer = ptr.GetValue();
    wanted.buffer = state.CurrentVertexArray().arrayBuffer;
    if (held != wanted) WriteAttribPointer(state, index.GetValue()) = wanted;
    return true;
}

}  // namespace kestrail
