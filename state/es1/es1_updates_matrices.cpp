// What the matrix calls of OpenGL ES 1.1 do to the record's stacks.
#include <algorithm>

#include "generated/calls/es1_calls.h"
#include "state/es1/es1_matrices.h"
#include "state/es1/es1_numbers.h"

namespace kestrail {
namespace {

constexpr std::int32_t kNoStack = -1;

/// The stack of the current mode; none for the palette unless the call is one of those that take
/// it.
std::int32_t CurrentStack(const CEs1State& state, bool withPalette) {
    constexpr std::uint32_t kModelView = 5888;
    constexpr std::uint32_t kProjection = 5889;
    constexpr std::uint32_t kTexture = 5890;
    constexpr std::uint32_t kMatrixPalette = 34880;
    constexpr std::int32_t kPaletteStacks = kMatrixStacks - kStackPalette;
    switch (state.matrixMode) {
        case kModelView:
            return kStackModelView;
        case kProjection:
            return kStackProjection;
        case kTexture: {
            const std::int32_t unit = state.ActiveUnit();
            return unit < 0 ? kNoStack : kStackTexture + unit;
        }
        case kMatrixPalette: {
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

SMatrix MatrixFrom(const float* elements) {
    SMatrix matrix;
    std::copy_n(elements, matrix.size(), matrix.begin());
    return matrix;
}

}  // namespace

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

bool CEs1_glLoadMatrixf_v6::UpdateState(CEs1State& state, SUpdates&) {
    const float* elements = m.GetRawArray();
    return elements != nullptr && Load(state, MatrixFrom(elements), true);
}

bool CEs1_glLoadMatrixx_v6::UpdateState(CEs1State& state, SUpdates&) {
    const std::int32_t* elements = m.GetRawArray();
    return elements != nullptr && Load(state, MatrixFromFixed(elements), true);
}

bool CEs1_glMultMatrixf_v1::UpdateState(CEs1State& state, SUpdates&) {
    const float* elements = m.GetRawArray();
    return elements != nullptr && Multiply(state, MatrixFrom(elements));
}

bool CEs1_glMultMatrixx_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::int32_t* elements = m.GetRawArray();
    return elements != nullptr && Multiply(state, MatrixFromFixed(elements));
}

bool CEs1_glTranslatef_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state, TranslateMatrix(x.GetValue(), y.GetValue(), z.GetValue()));
}

bool CEs1_glTranslatex_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state, TranslateMatrix(FixedValue(x.GetValue()), FixedValue(y.GetValue()),
                                           FixedValue(z.GetValue())));
}

bool CEs1_glScalef_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state, ScaleMatrix(x.GetValue(), y.GetValue(), z.GetValue()));
}

bool CEs1_glScalex_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state, ScaleMatrix(FixedValue(x.GetValue()), FixedValue(y.GetValue()),
                                       FixedValue(z.GetValue())));
}

bool CEs1_glRotatef_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state,
                    RotateMatrix(angle.GetValue(), x.GetValue(), y.GetValue(), z.GetValue()));
}

bool CEs1_glRotatex_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state,
                    RotateMatrixFixed(angle.GetValue(), x.GetValue(), y.GetValue(), z.GetValue()));
}

bool CEs1_glFrustumf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state, FrustumMatrix(l.GetValue(), r.GetValue(), b.GetValue(), t.GetValue(),
                                         n.GetValue(), f.GetValue()));
}

bool CEs1_glFrustumx_v1::UpdateState(CEs1State& state, SUpdates&) {
    const auto matrix = FrustumMatrixFixed(l.GetValue(), r.GetValue(), b.GetValue(), t.GetValue(),
                                           n.GetValue(), f.GetValue());
    return matrix && Multiply(state, *matrix);
}

bool CEs1_glOrthof_v1::UpdateState(CEs1State& state, SUpdates&) {
    return Multiply(state, OrthoMatrix(l.GetValue(), r.GetValue(), b.GetValue(), t.GetValue(),
                                       n.GetValue(), f.GetValue()));
}

bool CEs1_glOrthox_v1::UpdateState(CEs1State& state, SUpdates&) {
    const auto matrix = OrthoMatrixFixed(l.GetValue(), r.GetValue(), b.GetValue(), t.GetValue(),
                                         n.GetValue(), f.GetValue());
    return matrix && Multiply(state, *matrix);
}

}  // namespace kestrail
