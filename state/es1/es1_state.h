// The whole fixed-function state at one point of a trace, in recorded names. Matrices are not
// readable from the calls alone, so whole stacks are kept and updated here. A copy is deep in
// meaning; in memory, the large parts stay shared until one side changes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/shared.h"
#include "base/shared_array.h"
#include "state/es2/es2_state.h"

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
inline constexpr std::array<std::uint32_t, 10> kLightParameters = {4608, 4609, 4610, 4611, 4612,
                                                                   4613, 4614, 4615, 4616, 4617};
/// Parameters of the material, in the order of its values.
inline constexpr std::array<std::uint32_t, 5> kMaterialParameters = {4608, 4609, 4610, 5632, 5633};
/// The capabilities of glEnable but GL_TEXTURE_2D, in the order of `capabilities`.
inline constexpr std::array<std::uint32_t, 34> kEs1Capabilities = {
    3008,  3042, 12288, 12289, 12290, 12291, 12292, 12293, 3058,  2903,  2884, 2929,
    3024,  2912, 16384, 16385, 16386, 16387, 16388, 16389, 16390, 16391, 2896, 2848,
    32925, 2977, 2832,  34913, 32823, 32826, 32926, 32927, 3089,  2960};
/// In the order of `hints`.
inline constexpr std::array<std::uint32_t, 5> kEs1Hints = {3156, 33170, 3154, 3152, 3153};
/// In the order of `textureEnv`.
inline constexpr std::array<std::uint32_t, 15> kTextureEnvParameters = {
    8704,  34161, 34162, 34176, 34177, 34178, 34184, 34185,
    34186, 34192, 34193, 34194, 34200, 34201, 34202};
/// In the order of their slots: size minimum, maximum, fade threshold, distance attenuation.
inline constexpr std::array<std::uint32_t, 4> kPointParameters = {33062, 33063, 33064, 33065};
/// Min filter, mag filter, wrap S, wrap T.
inline constexpr std::array<std::uint32_t, 4> kTexture1Parameters = {10241, 10240, 10242, 10243};

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

struct STextureImage1State {
    std::uint32_t name = 0;
    std::uint32_t target = 0;
    std::int32_t level = 0;
    CSharedBytes data;
    std::uint32_t format = 0;
    std::int32_t internalFormat = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t type = 0;
    std::int32_t unpackAlignment = 0;
    std::int32_t border = 0;
    std::array<std::int32_t, 4> parameters = {9986, 9729, 10497, 10497};
    std::uint32_t imageSize = 0;
    std::uint8_t compressed = 0;

    /// As that of ES2; there are no others here.
    static std::int32_t Layers() { return -1; }
};

struct SClientArrayState {
    std::uint32_t buffer = 0;
    std::int32_t size = 0;
    std::uint32_t type = 0;
    std::int32_t stride = 0;
    std::uint32_t pointer = 0;

    bool operator==(const SClientArrayState&) const = default;
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
inline constexpr std::array<std::uint32_t, 6> kClientStates = {32886, 32885, 32884,
                                                               35740, 34884, 34477};

class CEs1State {
public:
    std::int32_t textureUnitsUsed = 1;
    std::int32_t paletteMatricesUsed = 0;
    std::uint32_t activeTexture = 33984;
    std::uint32_t alphaFunc = 519;
    float alphaRef = 0.0F;
    std::uint32_t arrayBuffer = 0;
    std::array<std::uint32_t, kTextureUnits> binding2D{};
    std::uint32_t blendSrc = 1;
    std::uint32_t blendDst = 0;
    TShared<TStateTable<SBufferState>> buffers;
    SVector4 clearColor{};
    float clearDepth = 1.0F;
    std::int32_t clearStencil = 0;
    std::uint32_t clientActiveTexture = 33984;
    std::uint32_t clipPlaneIndex = 0;
    std::array<SVector4, 6> clipPlanes{};
    SVector4 currentColor = {1.0F, 1.0F, 1.0F, 1.0F};
    std::array<std::uint8_t, 4> colorMask = {1, 1, 1, 1};
    std::uint32_t cullFaceMode = 1029;
    std::uint32_t depthFunc = 513;
    std::uint8_t depthMask = 1;
    float depthRangeNear = 0.0F;
    float depthRangeFar = 1.0F;
    // Kept: all off, dither and multisampling too; tools compare pictures of sought frames.
    std::array<std::uint8_t, kEs1Capabilities.size()> capabilities{};
    std::array<std::uint8_t, kTextureUnits> texture2DEnabled{};
    float fogMode = 2048.0F;  ///< an enumerant, held as the float that glFogf takes
    float fogDensity = 1.0F;
    float fogStart = 0.0F;
    float fogEnd = 1.0F;
    SVector4 fogColor{};
    std::uint32_t frontFace = 2305;
    std::array<std::uint32_t, kEs1Hints.size()> hints = {4352, 4352, 4352, 4352, 4352};
    TShared<SLights> lights;
    std::uint8_t lightModelTwoSide = 0;
    SVector4 lightModelAmbient = {0.2F, 0.2F, 0.2F, 1.0F};
    float lineWidth = 1.0F;
    std::uint32_t logicOp = 5379;
    // Kept: two alphas of 1.1; tools compare pictures of sought frames.
    std::array<SVector4, kMaterialParameters.size()> material = {{{0.2F, 0.2F, 0.2F, 1.0F},
                                                                  {0.8F, 0.8F, 0.8F, 1.0F},
                                                                  {0.0F, 0.0F, 0.0F, 1.1F},
                                                                  {0.0F, 0.0F, 0.0F, 1.1F},
                                                                  {0.0F, 0.0F, 0.0F, 0.0F}}};
    std::uint32_t matrixMode = 5888;
    CMatrixStacks matrixStacks;
    TShared<std::array<SVector4, kTextureUnits>> currentTexCoord;
    std::array<float, 3> currentNormal = {0.0F, 0.0F, 1.0F};
    std::int32_t packAlignment = 4;
    std::int32_t unpackAlignment = 4;
    /// By kPointParameters; those with one value use the first of their slot.
    std::array<std::array<float, 3>, kPointParameters.size()> pointParameters = {
        {{0.0F, 0.0F, 0.0F}, {63.77F, 0.0F, 0.0F}, {1.0F, 0.0F, 0.0F}, {1.0F, 1.0F, 1.0F}}};
    float pointSize = 1.0F;
    float polygonOffsetFactor = 0.0F;
    float polygonOffsetUnits = 0.0F;
    float sampleCoverageValue = 1.0F;
    std::uint8_t sampleCoverageInvert = 0;
    std::array<std::int32_t, 4> scissorBox{};
    std::uint32_t shadeModel = 7425;
    std::uint32_t stencilFunc = 519;
    std::int32_t stencilRef = 0;
    // Kept: 28 bits, and operations of 0; tools compare pictures of sought frames.
    std::uint32_t stencilValueMask = 0x0FFFFFFFu;
    std::uint32_t stencilWriteMask = 0x0FFFFFFFu;
    std::uint32_t stencilFail = 0;
    std::uint32_t stencilDepthFail = 0;
    std::uint32_t stencilDepthPass = 0;
    TShared<STextureEnvs> textureEnvs;
    /// By recorded name, then level.
    TShared<TStateTable<TShared<TStateTable<STextureImage1State>>>> textures;
    std::array<std::int32_t, 4> viewport{};
    std::uint32_t currentVertexArray = 0;
    TShared<TStateTable<TShared<SClientArraysState>>> vertexArrays;
    std::int32_t paletteIndex = 0;
    TShared<TStateTable<SFramebufferState>> framebuffers;
    TShared<TStateTable<SRenderbufferState>> renderbuffers;
    std::uint32_t boundFramebuffer = 0;
    std::uint32_t boundRenderbuffer = 0;

    const STextureImage1State* FindImage(std::uint32_t name, std::uint32_t level) const;
    /// The image to change; a default one is made where there is none.
    STextureImage1State& WriteImage(std::uint32_t name, std::uint32_t level);
    /// The client arrays in use; default ones while no call has set any.
    const SClientArraysState& CurrentVertexArray() const;
    SClientArraysState& WriteCurrentVertexArray();
    /// Whether any call has set it, if only to what it is by default: a restore then sets it, too.
    bool HasCurrentVertexArray() const { return vertexArrays->Find(currentVertexArray) != nullptr; }
    /// The active texture unit; -1 when the enumerant names none that the record holds.
    std::int32_t ActiveUnit() const { return UnitOf(activeTexture); }
    static std::int32_t UnitOf(std::uint32_t texture);
};

}  // namespace kestrail
