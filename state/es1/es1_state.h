// The whole fixed-function state at one point of a trace, in recorded names. Matrices are not
// readable from the calls alone, so whole stacks are kept and updated here. A copy is deep in
// meaning; in memory, the large parts stay shared until one side changes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/enumerants.h"
#include "base/shared_array.h"
#include "state/context_state.h"

namespace kestrail {

using SMatrix = std::array<float, 16>;

/// The identity at every level until it is written.
class CMatrixStack {
public:
    static constexpr std::uint32_t kLevels = 20;

    const SMatrix& Level(std::uint32_t level) const;
    /// The level to change; below `kLevels`.
    SMatrix& WriteLevel(std::uint32_t level);
    bool SameAs(const CMatrixStack& other) const {
        return top == other.top && m_levels.SameAs(other.m_levels);
    }

    /// The level of the current matrix.
    std::int32_t top = 0;

private:
    /// As far as any was written.
    TSharedArray<SMatrix> m_levels;
};

/// Where the stacks of a mode begin.
enum EMatrixStack : std::int32_t {
    kStackModelView = 0,
    kStackProjection = 1,
    kStackTexture = 2,
    kStackPalette = 34,
    kMatrixStacks = 43,
};

/// By `EMatrixStack`. Those beyond the first texture unit's hardly ever change.
class CMatrixStacks {
public:
    const CMatrixStack& operator[](std::size_t stack) const {
        return stack < kCommon ? m_common[stack] : (*m_others)[stack - kCommon];
    }
    CMatrixStack& Write(std::size_t stack) {
        return stack < kCommon ? m_common[stack] : m_others.Write()[stack - kCommon];
    }

private:
    static constexpr std::size_t kCommon = 3;

    std::array<CMatrixStack, kCommon> m_common;
    TShared<std::array<CMatrixStack, kMatrixStacks - kCommon>> m_others;
};

/// Parameters of a light, in the order of its values.
inline constexpr std::array<std::uint32_t, 10> kLightParameters = {GL_AMBIENT,
                                                                   GL_DIFFUSE,
                                                                   GL_SPECULAR,
                                                                   GL_POSITION,
                                                                   GL_SPOT_DIRECTION,
                                                                   GL_SPOT_EXPONENT,
                                                                   GL_SPOT_CUTOFF,
                                                                   GL_CONSTANT_ATTENUATION,
                                                                   GL_LINEAR_ATTENUATION,
                                                                   GL_QUADRATIC_ATTENUATION};
/// Parameters of the material, in the order of its values.
inline constexpr std::array<std::uint32_t, 5> kMaterialParameters = {
    GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION, GL_SHININESS};
/// The capabilities of glEnable but GL_TEXTURE_2D, in the order of `capabilities`.
inline constexpr std::array<std::uint32_t, 34> kEs1Capabilities = {GL_ALPHA_TEST,
                                                                   GL_BLEND,
                                                                   GL_CLIP_PLANE0,
                                                                   GL_CLIP_PLANE1,
                                                                   GL_CLIP_PLANE2,
                                                                   GL_CLIP_PLANE3,
                                                                   GL_CLIP_PLANE4,
                                                                   GL_CLIP_PLANE5,
                                                                   GL_COLOR_LOGIC_OP,
                                                                   GL_COLOR_MATERIAL,
                                                                   GL_CULL_FACE,
                                                                   GL_DEPTH_TEST,
                                                                   GL_DITHER,
                                                                   GL_FOG,
                                                                   GL_LIGHT0,
                                                                   GL_LIGHT1,
                                                                   GL_LIGHT2,
                                                                   GL_LIGHT3,
                                                                   GL_LIGHT4,
                                                                   GL_LIGHT5,
                                                                   GL_LIGHT6,
                                                                   GL_LIGHT7,
                                                                   GL_LIGHTING,
                                                                   GL_LINE_SMOOTH,
                                                                   GL_MULTISAMPLE,
                                                                   GL_NORMALIZE,
                                                                   GL_POINT_SMOOTH,
                                                                   GL_POINT_SPRITE_OES,
                                                                   GL_POLYGON_OFFSET_FILL,
                                                                   GL_RESCALE_NORMAL,
                                                                   GL_SAMPLE_ALPHA_TO_COVERAGE,
                                                                   GL_SAMPLE_ALPHA_TO_ONE,
                                                                   GL_SCISSOR_TEST,
                                                                   GL_STENCIL_TEST};
/// In the order of `hints`.
inline constexpr std::array<std::uint32_t, 5> kEs1Hints = {
    GL_FOG_HINT, GL_GENERATE_MIPMAP_HINT, GL_LINE_SMOOTH_HINT, GL_PERSPECTIVE_CORRECTION_HINT,
    GL_POINT_SMOOTH_HINT};
/// In the order of `textureEnv`.
inline constexpr std::array<std::uint32_t, 15> kTextureEnvParameters = {
    GL_TEXTURE_ENV_MODE, GL_COMBINE_RGB,  GL_COMBINE_ALPHA,  GL_SRC0_RGB,       GL_SRC1_RGB,
    GL_SRC2_RGB,         GL_SRC0_ALPHA,   GL_SRC1_ALPHA,     GL_SRC2_ALPHA,     GL_OPERAND0_RGB,
    GL_OPERAND1_RGB,     GL_OPERAND2_RGB, GL_OPERAND0_ALPHA, GL_OPERAND1_ALPHA, GL_OPERAND2_ALPHA};
/// In the order of their slots: size minimum, maximum, fade threshold, distance attenuation.
inline constexpr std::array<std::uint32_t, 4> kPointParameters = {
    GL_POINT_SIZE_MIN, GL_POINT_SIZE_MAX, GL_POINT_FADE_THRESHOLD_SIZE,
    GL_POINT_DISTANCE_ATTENUATION};
/// Min filter, mag filter, wrap S, wrap T.
inline constexpr std::array<std::uint32_t, 4> kTexture1Parameters = {
    GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T};

using SVector4 = std::array<float, 4>;

struct SLights {
    // Kept: all zero but for light 0, spots too; tools compare pictures of sought frames.
    SLights();
    std::array<std::array<SVector4, kLightParameters.size()>, 8> values{};
};

// Kept: recorded, but set by no seek; tools compare pictures of sought frames.
struct STextureEnvs {
    std::array<std::array<std::int32_t, kTextureEnvParameters.size()>, kTextureUnits> values{};
    /// GL_RGB_SCALE and GL_ALPHA_SCALE.
    std::array<std::array<float, 2>, kTextureUnits> scales{};
    std::array<std::int32_t, kTextureUnits> pointSpriteReplace{};
};

struct STextureImage1State : SImageState {
    std::array<std::int32_t, 4> parameters = {GL_NEAREST_MIPMAP_LINEAR, GL_LINEAR, GL_REPEAT,
                                              GL_REPEAT};

    /// As that of ES2; there are no others here.
    static std::int32_t Layers() { return -1; }
};

/// The client arrays of one vertex array object.
struct SClientArraysState {
    std::uint32_t name = 0;
    SClientArrayState color;
    SClientArrayState vertex;
    SClientArrayState normal;
    SClientArrayState pointSize;
    SClientArrayState matrixIndex;
    SClientArrayState weight;
    std::array<SClientArrayState, kTextureUnits> texCoords{};
    /// By kClientStates.
    std::array<std::uint8_t, 6> enabled{};
    std::array<std::uint8_t, kTextureUnits> texCoordEnabled{};
    std::uint32_t elementBuffer = 0;
};
/// Colour, normal, vertex, point size, matrix index, weight: in the order of `enabled`.
inline constexpr std::array<std::uint32_t, 6> kClientStates = {
    GL_COLOR_ARRAY,          GL_NORMAL_ARRAY,           GL_VERTEX_ARRAY,
    GL_POINT_SIZE_ARRAY_OES, GL_MATRIX_INDEX_ARRAY_OES, GL_WEIGHT_ARRAY_OES};

class CEs1State : public TContextState<SClientArraysState> {
public:
    std::int32_t paletteMatricesUsed = 0;
    std::uint32_t alphaFunc = GL_ALWAYS;
    float alphaRef = 0.0F;
    std::uint32_t arrayBuffer = 0;
    std::array<std::uint32_t, kTextureUnits> binding2D{};
    std::uint32_t blendSrc = GL_ONE;
    std::uint32_t blendDst = GL_ZERO;
    std::uint32_t clientActiveTexture = GL_TEXTURE0;
    std::uint32_t clipPlaneIndex = 0;
    std::array<SVector4, 6> clipPlanes{};
    SVector4 currentColor = {1.0F, 1.0F, 1.0F, 1.0F};
    // Kept: all off, dither and multisampling too; tools compare pictures of sought frames.
    std::array<std::uint8_t, kEs1Capabilities.size()> capabilities{};
    std::array<std::uint8_t, kTextureUnits> texture2DEnabled{};
    float fogMode = GL_EXP;  ///< an enumerant, held as the float that glFogf takes
    float fogDensity = 1.0F;
    float fogStart = 0.0F;
    float fogEnd = 1.0F;
    SVector4 fogColor{};
    std::array<std::uint32_t, kEs1Hints.size()> hints = {GL_DONT_CARE, GL_DONT_CARE, GL_DONT_CARE,
                                                         GL_DONT_CARE, GL_DONT_CARE};
    TShared<SLights> lights;
    std::uint8_t lightModelTwoSide = 0;
    SVector4 lightModelAmbient = {0.2F, 0.2F, 0.2F, 1.0F};
    float lineWidth = 1.0F;
    std::uint32_t logicOp = GL_COPY;
    // Kept: two alphas of 1.1; tools compare pictures of sought frames.
    std::array<SVector4, kMaterialParameters.size()> material = {{{0.2F, 0.2F, 0.2F, 1.0F},
                                                                  {0.8F, 0.8F, 0.8F, 1.0F},
                                                                  {0.0F, 0.0F, 0.0F, 1.1F},
                                                                  {0.0F, 0.0F, 0.0F, 1.1F},
                                                                  {0.0F, 0.0F, 0.0F, 0.0F}}};
    std::uint32_t matrixMode = GL_MODELVIEW;
    CMatrixStacks matrixStacks;
    TShared<std::array<SVector4, kTextureUnits>> currentTexCoord;
    std::array<float, 3> currentNormal = {0.0F, 0.0F, 1.0F};
    /// By kPointParameters; those with one value use the first of their slot.
    std::array<std::array<float, 3>, kPointParameters.size()> pointParameters = {
        {{0.0F, 0.0F, 0.0F}, {63.77F, 0.0F, 0.0F}, {1.0F, 0.0F, 0.0F}, {1.0F, 1.0F, 1.0F}}};
    float pointSize = 1.0F;
    std::uint32_t shadeModel = GL_SMOOTH;
    // Kept: 28 bits, and operations of 0; tools compare pictures of sought frames.
    SStencilState stencil = {GL_ALWAYS, 0, 0x0FFFFFFFu, 0x0FFFFFFFu, 0, 0, 0};
    TShared<STextureEnvs> textureEnvs;
    /// By recorded name, then level.
    TShared<TStateTable<TShared<TStateTable<STextureImage1State>>>> textures;
    std::int32_t paletteIndex = 0;

    const STextureImage1State* FindImage(std::uint32_t name, std::uint32_t level) const;
    /// The image to change; a default one is made where there is none.
    STextureImage1State& WriteImage(std::uint32_t name, std::uint32_t level);
};

}  // namespace kestrail
