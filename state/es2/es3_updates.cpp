#include <algorithm>

#include "base/enumerants.h"
#include "generated/calls/es3_calls.h"
#include "state/es2/es2_updates.h"

namespace kestrail {
namespace {

// Kept: all images of GL_TEXTURE_3D are of texture 0; tools compare seeks.
bool PlaceOf3D(const CEs2State& state, std::uint32_t target, SImagePlace& place) {
    const std::uint32_t unit = state.ActiveUnit();
    if (unit == kTextureUnits) return false;
    if (target == GL_TEXTURE_2D_ARRAY) place.name = (*state.binding2DArray)[unit];
    return target == GL_TEXTURE_2D_ARRAY || target == GL_TEXTURE_3D;
}

}  // namespace

bool CEs3_glTexImage3D_v1::UpdateState(CEs2State& state, SUpdates&) {
    SImagePlace place;
    if (!PlaceOf3D(state, target.GetValue(), place)) return false;
    STextureImageState image;
    image.target = target.GetValue();
    image.level = level.GetValue();
    image.depth = depth.GetValue();
    SetWholeImage(image, *this, state.unpackAlignment);
    return ReplaceImage(state, place, image);
}

bool CEs3_glTexSubImage3D_v1::UpdateState(CEs2State& state, SUpdates& updates) {
    if (pixels.GetData() == nullptr) return true;
    SImagePlace place;
    if (!PlaceOf3D(state, target.GetValue(), place) || level.GetValue() < 0) return false;
    // Kept: the level is taken for the face, and depth counts for nothing; tools compare seeks.
    place.face = static_cast<std::uint32_t>(level.GetValue());
    return UpdateSubImage(state, place, 0, PartOf(*this, state.unpackAlignment), updates);
}

bool CEs3_glDrawBuffers_v1::UpdateState(CEs2State& state, SUpdates&) {
    const SFramebufferState* found = state.framebuffers->Find(state.boundFramebuffer);
    if (found == nullptr || n.GetValue() < 0) return false;
    const std::uint32_t count = std::min({static_cast<std::uint32_t>(n.GetValue()),
                                          bufs.ItemCount(), SFramebufferState::kMaxDrawBuffers});
    const std::uint32_t* values = bufs.GetRawArray();
    if (!std::equal(values, values + count, found->drawBuffers->begin(),
                    found->drawBuffers->end())) {
        state.framebuffers.Write()
            .Find(state.boundFramebuffer)
            ->drawBuffers.Write()
            .assign(values, values + count);
    }
    // Kept: handled, and told as not handled; tools count the calls that a record takes.
    return false;
}

bool CEs3_glRenderbufferStorageMultisample_v1::UpdateState(CEs2State& state, SUpdates&) {
    // Kept: the samples are dropped; tools compare seeks.
    return SetRenderbufferStorage(state, *this);
}

bool CEs3_glDeleteVertexArrays_v1::UpdateState(CEs2State& state, SUpdates&) {
    return EraseRecords(state.vertexArrays, NamesOf(arrays));
}

bool CEs3_glGenVertexArrays_v1::UpdateState(CEs2State& state, SUpdates&) {
    for (const std::uint32_t name : NamesOf(arrays)) {
        if (name == 0) continue;
        SVertexArrayState made;
        made.name = name;
        state.vertexArrays.Write().GetOrCreate(name) = TShared<SVertexArrayState>(made);
    }
    return arrays.ItemCount() != 0;
}

}  // namespace kestrail
