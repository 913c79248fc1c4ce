// Effects of what a context holds by itself: matrices, capabilities, masks.
#include "slicing/effects.h"

namespace kestrail {

std::uint64_t CEffects::MatrixPlace() {
    const std::uint32_t mode = Value(m_context, ESlot::kMatrixMode);
    std::uint32_t which = 0;
    if (mode == GL_TEXTURE) which = Value(m_context, ESlot::kActiveTexture);
    if (mode == GL_MATRIX_PALETTE_OES) which = Value(m_context, ESlot::kPalette);
    return std::uint64_t{which} << 32 | (mode != 0 ? mode : GL_MODELVIEW);
}

void CEffects::MatrixMode(std::uint32_t mode) {
    Set(m_context, ESlot::kMatrixMode, 0, mode);
}

void CEffects::PaletteMatrix(std::uint32_t matrix) {
    Set(m_context, ESlot::kPalette, 0, matrix);
}

void CEffects::LoadPalette() {
    ReadMatrix();
    const std::uint64_t palette = Value(m_context, ESlot::kPalette);
    Set(m_context, ESlot::kMatrix, palette << 32 | GL_MATRIX_PALETTE_OES);
}

void CEffects::ReadMatrix() {
    ReadPlace(m_context, ESlot::kMatrix, GL_MODELVIEW);
}

void CEffects::LoadMatrix() {
    const std::uint64_t place = MatrixPlace();
    if (Resolves()) return;
    const std::uint32_t journal = Place(m_context, ESlot::kMatrix, place, true);
    const auto& pushed = m_pushed[journal];
    Enter(journal, m_at, pushed.empty() ? 0 : pushed.back());
}

void CEffects::ChangeMatrix() {
    Add(m_context, ESlot::kMatrix, MatrixPlace(), 0);
}

void CEffects::PushMatrix() {
    const std::uint64_t place = MatrixPlace();
    Add(m_context, ESlot::kMatrix, place, 0);
    if (Resolves()) return;
    const std::uint32_t journal = Place(m_context, ESlot::kMatrix, place, true);
    m_pushed[journal].push_back(static_cast<std::uint32_t>(m_journals[journal].entries.size()));
}

void CEffects::PopMatrix() {
    const std::uint64_t place = MatrixPlace();
    if (Resolves()) return ReadPlace(m_context, ESlot::kMatrix, place);
    const std::uint32_t journal = Place(m_context, ESlot::kMatrix, place, true);
    auto& pushed = m_pushed[journal];
    if (pushed.empty()) return;
    // All is as it was in front of the push, which must not stand without its pop.
    const SJournal::SEntry push = m_journals[journal].entries[pushed.back() - 1];
    pushed.pop_back();
    m_endings.emplace(push.call, m_at);
    Enter(journal, 0, push.previous);
}

void CEffects::Capability(std::uint32_t capability, bool on) {
    std::uint64_t place = capability;
    if (m_isEs1 && capability == GL_TEXTURE_2D) {
        place |= std::uint64_t{Value(m_context, ESlot::kActiveTexture)} << 32;
    }
    Set(m_context, ESlot::kCapability, place, on ? 1 : 0);
    if (m_isEs1 && capability == GL_COLOR_MATERIAL) {
        for (const GLenum pname : {GL_AMBIENT, GL_DIFFUSE}) {
            ReadPlace(m_context, ESlot::kColor);
            Add(m_context, ESlot::kMaterial, pname, 0);
        }
    }
}

void CEffects::Material(std::uint32_t pname) {
    if (pname == GL_AMBIENT_AND_DIFFUSE) {
        Set(m_context, ESlot::kMaterial, GL_AMBIENT);
        Set(m_context, ESlot::kMaterial, GL_DIFFUSE);
    } else {
        Set(m_context, ESlot::kMaterial, pname);
    }
}

void CEffects::Color() {
    Set(m_context, ESlot::kColor);
    if (Value(m_context, ESlot::kCapability, GL_COLOR_MATERIAL) == 0) return;
    Material(GL_AMBIENT_AND_DIFFUSE);
}

void CEffects::ColorMask(bool red, bool green, bool blue, bool alpha) {
    const int through = int{red} + int{green} + int{blue} + int{alpha};
    Set(m_context, ESlot::kColorMask, 0, through == 4 ? 0 : through == 0 ? 2 : 1);
}

void CEffects::DepthMask(bool on) {
    Set(m_context, ESlot::kDepthMask, 0, on ? 0 : 2);
}

void CEffects::StencilMask(std::uint32_t face, std::uint32_t mask) {
    // No stencil has more bits.
    const std::uint32_t value = (mask & 0xFF) == 0xFF ? 0 : (mask & 0xFF) == 0 ? 2 : 1;
    if (face != GL_BACK) Set(m_context, ESlot::kStencilMask, GL_FRONT, value);
    if (face != GL_FRONT) Set(m_context, ESlot::kStencilMask, GL_BACK, value);
}

void CEffects::Scissor(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    if (Resolves()) return;
    m_scissors.push_back({x, y, width, height});
    Set(m_context, ESlot::kScissor, 0, static_cast<std::uint32_t>(m_scissors.size()));
}

void CEffects::PixelStore(std::uint32_t pname) {
    Set(m_context, ESlot::kPixelStore, pname);
}

void CEffects::TextureEnvironment(std::uint32_t target, std::uint32_t pname) {
    const std::uint64_t unit = Value(m_context, ESlot::kActiveTexture);
    State(std::uint64_t{0xFF} << 56 | unit << 48, target, pname);
}

void CEffects::State(std::uint64_t state, std::uint32_t first, std::uint32_t second) {
    Set(m_context, ESlot::kState, state | std::uint64_t{first} << 24 | second);
}

void CEffects::Faces(std::uint64_t state, std::uint32_t face) {
    if (face != GL_BACK) State(state, GL_FRONT);
    if (face != GL_FRONT) State(state, GL_BACK);
}

}  // namespace kestrail
