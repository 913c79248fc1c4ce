#include <algorithm>
#include <cstring>

#include "base/enumerants.h"
#include "generated/calls/es2_calls.h"
#include "state/es2/es2_updates.h"
#include "state/sub_data.h"

namespace kestrail {
namespace {

/// The name that is bound to `target`; false for a target that the record doesn't hold.
bool BoundBuffer(const CEs2State& state, std::uint32_t target, std::uint32_t& name) {
    const SVertexArrayState& array = state.CurrentVertexArray();
    if (target == GL_ARRAY_BUFFER) {
        name = array.arrayBuffer;
    } else if (target == GL_ELEMENT_ARRAY_BUFFER) {
        name = array.elementBuffer;
    } else {
        return false;
    }
    return true;
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

void MarkIncomplete(CEs2State& state, std::uint32_t framebuffer) {
    const SFramebufferState* found = state.framebuffers->Find(framebuffer);
    if (found == nullptr || found->incomplete) return;
    state.framebuffers.Write().Find(framebuffer)->incomplete = true;
}

/// Unbinds `bound` when it is one of the deleted names.
template <typename Names>
void Unbind(std::uint32_t& bound, const Names& names) {
    const std::uint32_t count = names.ItemCount();
    for (std::uint32_t i = 0; i < count; ++i) {
        if (names.GetItem(i) == bound) bound = 0;
    }
}

}  // namespace

bool SetRenderbufferStorage(CEs2State& state, std::uint32_t internalFormat, std::int32_t width,
                            std::int32_t height) {
    if (state.renderbuffers->Find(state.boundRenderbuffer) == nullptr) return false;
    SRenderbufferState& renderbuffer = *state.renderbuffers.Write().Find(state.boundRenderbuffer);
    renderbuffer.width = width;
    renderbuffer.height = height;
    renderbuffer.internalFormat = internalFormat;
    renderbuffer.samples = 0;
    return true;
}

void BindContentBuffer(CEs2State& state, std::uint32_t target, std::uint32_t name) {
    const auto& targets = SContentBindings::kBuffers;
    const auto found = std::find(targets.begin(), targets.end(), target) - targets.begin();
    const auto place = static_cast<std::size_t>(found);
    if (place < targets.size()) state.content.buffers[place] = name;
}

void MarkAttached(CEs2State& state, std::uint32_t target, bool held) {
    const std::uint32_t framebuffer = target == GL_READ_FRAMEBUFFER ? state.content.readFramebuffer
                                                                    : state.content.drawFramebuffer;
    if (held && framebuffer == state.boundFramebuffer) return;
    MarkIncomplete(state, framebuffer);
    if (held) MarkIncomplete(state, state.boundFramebuffer);
}

bool CEs2_glBindBuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = buffer.GetValue();
    BindContentBuffer(state, target.GetValue(), name);
    std::uint32_t bound = 0;
    if (!BoundBuffer(state, target.GetValue(), bound)) return false;
    if (bound == name && state.HasCurrentVertexArray()) return true;
    SVertexArrayState& array = state.WriteCurrentVertexArray();
    (target.GetValue() == GL_ARRAY_BUFFER ? array.arrayBuffer : array.elementBuffer) = name;
    return true;
}

bool CEs2_glBufferData_v1::UpdateState(CEs2State& state, SUpdates&) {
    std::uint32_t name = 0;
    if (!BoundBuffer(state, target.GetValue(), name) || name == 0 || size.GetValue() < 0) {
        return false;
    }
    const auto bytes = static_cast<std::uint32_t>(size.GetValue());
    SBufferState& buffer = state.buffers.Write().GetOrCreate(name);
    buffer = SBufferState{};
    buffer.name = name;
    buffer.target = target.GetValue();
    buffer.size = bytes;
    buffer.usage = usage.GetValue();
    // Contents are whole or absent, so that nobody reads more than was captured.
    if (data.GetSize() >= bytes) buffer.data = CSharedBytes::Borrow(data.GetData(), bytes);
    return true;
}

bool CEs2_glBufferSubData_v1::UpdateState(CEs2State& state, SUpdates& updates) {
    std::uint32_t name = 0;
    if (!BoundBuffer(state, target.GetValue(), name)) return false;
    return ApplySubData(state.buffers, name, offset.GetValue(), size.GetValue(), data, updates);
}

bool CEs2_glDeleteBuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    for (std::uint32_t& bound : state.content.buffers) Unbind(bound, buffers);
    return EraseRecords(state.buffers, buffers);
}

bool CEs2_glBindFramebuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = framebuffer.GetValue();
    state.boundFramebuffer = name;
    if (target.GetValue() != GL_READ_FRAMEBUFFER) state.content.drawFramebuffer = name;
    if (target.GetValue() != GL_DRAW_FRAMEBUFFER) state.content.readFramebuffer = name;
    if (name == 0) return true;
    const SFramebufferState* found = state.framebuffers->Find(name);
    if (found == nullptr || found->everBound == 0) WriteFramebuffer(state)->everBound = 1;
    return true;
}

bool CEs2_glFramebufferRenderbuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    const bool held = target.GetValue() == GL_FRAMEBUFFER && IsAttachment(attachment.GetValue());
    MarkAttached(state, target.GetValue(), held);
    if (!held) return false;
    SFramebufferState* bound = WriteFramebuffer(state);
    if (bound == nullptr) return false;
    Attachment(*bound, attachment.GetValue()) = {renderbuffer.GetValue(), 0, 0, GL_RENDERBUFFER};
    return true;
}

bool CEs2_glFramebufferTexture2D_v1::UpdateState(CEs2State& state, SUpdates&) {
    MarkAttached(state, target.GetValue(), IsAttachment(attachment.GetValue()));
    if (!IsAttachment(attachment.GetValue())) return false;
    SFramebufferState* bound = WriteFramebuffer(state);
    if (bound == nullptr) return false;
    const std::uint32_t face = textarget.GetValue() == GL_TEXTURE_2D ? 0 : textarget.GetValue();
    bound->samples = 0;
    Attachment(*bound, attachment.GetValue()) = {texture.GetValue(), level.GetValue(), face,
                                                 GL_TEXTURE};
    return true;
}

bool CEs2_glGenFramebuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    return MakeRecords(state.framebuffers, framebuffers);
}

bool CEs2_glDeleteFramebuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    Unbind(state.boundFramebuffer, framebuffers);
    Unbind(state.content.drawFramebuffer, framebuffers);
    Unbind(state.content.readFramebuffer, framebuffers);
    return EraseRecords(state.framebuffers, framebuffers);
}

bool CEs2_glBindRenderbuffer_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = renderbuffer.GetValue();
    state.boundRenderbuffer = name;
    if (name == 0) return true;
    const SRenderbufferState* found = state.renderbuffers->Find(name);
    if (found != nullptr && found->everBound != 0 && found->samples == 0) return true;
    SRenderbufferState& bound = state.renderbuffers.Write().GetOrCreate(name);
    bound.name = name;
    bound.everBound = 1;
    bound.samples = 0;
    return true;
}

bool CEs2_glRenderbufferStorage_v1::UpdateState(CEs2State& state, SUpdates&) {
    return SetRenderbufferStorage(state, internalformat.GetValue(), width.GetValue(),
                                  height.GetValue());
}

bool CEs2_glGenRenderbuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    return MakeRecords(state.renderbuffers, renderbuffers);
}

bool CEs2_glDeleteRenderbuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    Unbind(state.boundRenderbuffer, renderbuffers);
    return EraseRecords(state.renderbuffers, renderbuffers);
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
