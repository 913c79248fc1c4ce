#include "state/es2/es2_state.h"

#include <algorithm>

#include "base/enumerants.h"

namespace kestrail {

std::size_t TextureParameterIndex(std::uint32_t pname) {
    const auto* found = std::find_if(kTextureParameters.begin(), kTextureParameters.end(),
                                     [&](const auto& known) { return known.pname == pname; });
    return static_cast<std::size_t>(found - kTextureParameters.begin());
}

std::array<std::int32_t, 15> DefaultTextureParameters() {
    std::array<std::int32_t, 15> values{};
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = kTextureParameters[i].initial;
    return values;
}

std::int32_t STextureImageState::Layers() const {
    return target == GL_TEXTURE_3D || target == GL_TEXTURE_2D_ARRAY ? std::max(depth, 0) : -1;
}

CEs2State::CEs2State() {
    constexpr std::size_t kDither = 3;
    capabilities[kDither] = 1;
    programs.Write().GetOrCreate(0);
}

const STextureImageState* CEs2State::FindImage(std::uint32_t name, std::uint32_t face,
                                               std::uint32_t level) const {
    const auto* faces = textures->Find(name);
    if (faces == nullptr) return nullptr;
    const auto* levels = (*faces)->Find(face);
    return levels != nullptr ? levels->Find(level) : nullptr;
}

STextureImageState& CEs2State::WriteImage(std::uint32_t name, std::uint32_t face,
                                          std::uint32_t level) {
    STextureFaces& faces = textures.Write().GetOrCreate(name).Write();
    if (face == 0 && level == 0) faces.hasFirst = true;
    return faces.GetOrCreate(face).GetOrCreate(level);
}

bool CEs2State::HasFirstImage(std::uint32_t name) const {
    const TShared<STextureFaces>* faces = textures->Find(name);
    return faces != nullptr && (*faces)->hasFirst;
}

}  // namespace kestrail
