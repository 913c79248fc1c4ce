// What the extension calls of OpenGL ES 1.1 do to its record: framebuffer objects, vertex array
// objects and the matrix palette.
#include <algorithm>

#include "base/enumerants.h"
#include "generated/calls/ext_calls.h"
#include "state/es1/es1_state.h"

namespace kestrail {
namespace {

/// Makes `name` the bound object of a table, which then holds a record of it.
template <typename Record>
bool BindObject(TShared<TStateTable<Record>>& table, std::uint32_t& bound, std::uint32_t name) {
    bound = name;
    if (name == 0) return true;
    const Record* known = table->Find(name);
    if (known != nullptr && known->everBound != 0) return true;
    Record& record = table.Write().GetOrCreate(name);
    record.name = name;
    record.everBound = 1;
    return true;
}

template <typename Record, typename Names>
bool MakeObjects(TShared<TStateTable<Record>>& table, std::int32_t count, const Names& names) {
    const std::int64_t made = std::min<std::int64_t>(count, names.ItemCount());
    if (made <= 0) return false;
    auto& records = table.Write();
    for (std::int64_t i = 0; i < made; ++i) {
        const std::uint32_t name = names.GetItem(static_cast<std::uint32_t>(i));
        if (name == 0) continue;
        Record& record = records.GetOrCreate(name);
        record = Record();
        record.name = name;
    }
    return true;
}

template <typename Record, typename Names>
bool DeleteObjects(TShared<TStateTable<Record>>& table, std::uint32_t& bound, std::int32_t count,
                   const Names& names) {
    const std::int64_t deleted = std::min<std::int64_t>(count, names.ItemCount());
    for (std::int64_t i = 0; i < deleted; ++i) {
        const std::uint32_t name = names.GetItem(static_cast<std::uint32_t>(i));
        if (bound == name) bound = 0;
        if (table->Find(name) != nullptr) table.Write().Erase(name);
    }
    return true;
}

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
    return BindObject(state.framebuffers, state.boundFramebuffer, framebuffer.GetValue());
}

bool CExt_glBindRenderbufferOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return BindObject(state.renderbuffers, state.boundRenderbuffer, renderbuffer.GetValue());
}

bool CExt_glGenFramebuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return MakeObjects(state.framebuffers, n.GetValue(), framebuffers);
}

bool CExt_glGenRenderbuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return MakeObjects(state.renderbuffers, n.GetValue(), renderbuffers);
}

bool CExt_glDeleteFramebuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return DeleteObjects(state.framebuffers, state.boundFramebuffer, n.GetValue(), framebuffers);
}

bool CExt_glDeleteRenderbuffersOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    return DeleteObjects(state.renderbuffers, state.boundRenderbuffer, n.GetValue(), renderbuffers);
}

bool CExt_glRenderbufferStorageOES_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::uint32_t bound = state.boundRenderbuffer;
    if (state.renderbuffers->Find(bound) == nullptr) return false;
    SRenderbufferState& renderbuffer = state.renderbuffers.Write().GetOrCreate(bound);
    renderbuffer.width = width.GetValue();
    renderbuffer.height = height.GetValue();
    renderbuffer.internalFormat = internalformat.GetValue();
    return true;
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
