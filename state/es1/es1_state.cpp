#include "state/es1/es1_state.h"

#include "base/enumerants.h"

namespace kestrail {

namespace {

constexpr SMatrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

}  // namespace

const SMatrix& CMatrixStack::Level(std::uint32_t level) const {
    return level < m_levels.Size() ? m_levels[level] : kIdentity;
}

SMatrix& CMatrixStack::WriteLevel(std::uint32_t level) {
    while (m_levels.Size() <= level) m_levels.Append() = kIdentity;
    return m_levels.Write(level);
}

SLights::SLights() {
    auto& light = values[0];
    light[0] = {0.0F, 0.0F, 0.0F, 1.0F};
    light[1] = {1.0F, 1.0F, 1.0F, 1.0F};
    light[2] = {1.0F, 1.0F, 1.0F, 1.0F};
    light[3] = {0.0F, 0.0F, 1.0F, 0.0F};
    light[4] = {0.0F, 0.0F, -1.0F, 0.0F};
    light[6] = {180.0F, 0.0F, 0.0F, 0.0F};
    light[7] = {1.0F, 0.0F, 0.0F, 0.0F};
}

const STextureImage1State* CEs1State::FindImage(std::uint32_t name, std::uint32_t level) const {
    const auto* levels = textures->Find(name);
    return levels != nullptr ? (*levels)->Find(level) : nullptr;
}

STextureImage1State& CEs1State::WriteImage(std::uint32_t name, std::uint32_t level) {
    return textures.Write().GetOrCreate(name).Write().GetOrCreate(level);
}

}  // namespace kestrail
