// What the matrix calls of OpenGL ES 1.1 do to the record's stacks.
#include "base/enumerants.h"
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_matrices.h"
#include "state/es1/es1_updates.h"

namespace kestrail {
namespace {

constexpr std::int32_t kNoStack = -1;

/// The stack of the current mode; none for the palette unless the call is one of those that take
/// it.
std::int32_t CurrentStack(const CEs1State& state, bool withPalette) {
    constexpr std::int32_t kPaletteStacks = kMatrixStacks - kStackPalette;
    switch (state.matrixMode) {
        case GL_MODELVIEW:
            return kStackModelView;
        case GL_PROJECTION:
            return kStackProjection;
        case GL_TEXTURE: {
            const std::uint32_t unit = state.ActiveUnit();
            return unit < kTextureUnits ? kStackTexture + static_cast<std::int32_t>(unit)
                                        : kNoStack;
        }
        case GL_MATRIX_PALETTE_OES: {
            const std::int32_t index = state.paletteIndex;
            const bool held = withPalette && index >= 0 && index < kPaletteStacks;
            return held ? kStackPalette + index : kNoStack;
        }
        default:
            return kNoStack;
    }
}

std::uint32_t TopOf(const CEs1State& state, std::size_t stack) {
    return static_cast<std::uint32_t>(state.matrixStacks[stack].top);
}

/// Most frames load what is there already: a stack is copied only for a level that changes.
void SetLevel(CEs1State& state, std::size_t stack, std::uint32_t level, const SMatrix& matrix) {
    if (SameBits(state.matrixStacks[stack].Level(level), matrix)) return;
    state.matrixStacks.Write(stack).WriteLevel(level) = matrix;
}

bool Load(CEs1State& state, const SMatrix& matrix, bool withPalette) {
    const std::int32_t current = CurrentStack(state, withPalette);
    if (current == kNoStack) return false;
    const auto stack = static_cast<std::size_t>(current);
    SetLevel(state, stack, TopOf(state, stack), matrix);
    return true;
}

bool Multiply(CEs1State& state, const SMatrix& factor) {
    const std::int32_t current = CurrentStack(state, false);
    if (current == kNoStack) return false;
    const auto stack = static_cast<std::size_t>(current);
    const std::uint32_t top = TopOf(state, stack);
    // Kept: by columns this is the wrong side; tools compare a seek's matrices.
    SetLevel(state, stack, top, Product(state.matrixStacks[stack].Level(top), factor));
    return true;
}

SMatrix MatrixFrom(const CNumbers& elements) {
    SMatrix matrix;
    elements.Store(matrix.data(), static_cast<std::uint32_t>(matrix.size()));
    return matrix;
}

}  // namespace

bool LoadMatrix(CEs1State& state, const CNumbers& elements) {
    return elements.Count() != 0 && Load(state, MatrixFrom(elements), true);
}

bool MultMatrix(CEs1State& state, const CNumbers& elements) {
    return elements.Count() != 0 && Multiply(state, MatrixFrom(elements));
}

bool Translate(CEs1State& state, const CNumbers& x, const CNumbers& y, const CNumbers& z) {
    return Multiply(state, TranslateMatrix(x.Real(), y.Real(), z.Real()));
}

bool Scale(CEs1State& state, const CNumbers& x, const CNumbers& y, const CNumbers& z) {
    return Multiply(state, ScaleMatrix(x.Real(), y.Real(), z.Real()));
}

bool Rotate(CEs1State& state, const CNumbers& angle, const CNumbers& x, const CNumbers& y,
            const CNumbers& z) {
    return Multiply(state, RotateMatrix(angle, x, y, z));
}

bool Frustum(CEs1State& state, const CNumbers& l, const CNumbers& r, const CNumbers& b,
             const CNumbers& t, const CNumbers& n, const CNumbers& f) {
    const auto matrix = FrustumMatrix({l, r, b, t, n, f});
    return matrix && Multiply(state, *matrix);
}

bool Ortho(CEs1State& state, const CNumbers& l, const CNumbers& r, const CNumbers& b,
           const CNumbers& t, const CNumbers& n, const CNumbers& f) {
    const auto matrix = OrthoMatrix({l, r, b, t, n, f});
    return matrix && Multiply(state, *matrix);
}

bool CEs1_glPushMatrix_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::int32_t current = CurrentStack(state, true);
    if (current == kNoStack) return false;
    const auto stack = static_cast<std::size_t>(current);
    const std::uint32_t top = TopOf(state, stack);
    if (top + 1 >= CMatrixStack::kLevels) return true;
    const SMatrix matrix = state.matrixStacks[stack].Level(top);
    SetLevel(state, stack, top + 1, matrix);
    ++state.matrixStacks.Write(stack).top;
    return true;
}

bool CEs1_glPopMatrix_v1::UpdateState(CEs1State& state, SUpdates&) {
    // Kept: never a palette's, which loads and pushes take; tools compare a seek's matrices.
    const std::int32_t current = CurrentStack(state, false);
    if (current == kNoStack) return false;
    const auto stack = static_cast<std::size_t>(current);
    if (state.matrixStacks[stack].top > 0) --state.matrixStacks.Write(stack).top;
    return true;
}

bool CEs1_glLoadIdentity_v1::UpdateState(CEs1State& state, SUpdates&) {
    constexpr SMatrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    return Load(state, kIdentity, false);
}

}  // namespace kestrail
