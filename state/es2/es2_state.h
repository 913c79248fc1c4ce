// One ES2 or ES3 context at one point of a trace: every value that a seek brings back, the objects
// that exist, and enough of their contents to make them again. All names are recorded ones. A copy
// is deep in meaning; in memory, tables and contents stay shared until one side changes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "base/enumerants.h"
#include "base/kstl_string.h"
#include "state/context_state.h"

namespace kestrail {

struct SProgramState {
    std::uint32_t name = 0;
    std::uint32_t vertexShader = 0;
    std::uint32_t fragmentShader = 0;
    std::uint8_t linked = 0;
    std::uint8_t deletePending = 0;
};

struct SShaderState {
    std::uint32_t name = 0;
    std::uint32_t type = 0;
    TShared<CKSTLString> source;
    /// Two shaders with an equal one have their source from the same call.
    std::uintptr_t sourceId = 0;
    std::uint32_t sourceLength = 0;
    std::uint8_t compiled = 0;
    std::uint8_t deletePending = 0;
    std::int32_t attachCount = 0;
};

/// What a uniform or an attribute is set to: floats, or integers where the kind says so. Up to four
/// stand here; more are referred to where the call keeps them, which outlives every record.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): of the union, one member is enough.
class CShaderValues {
public:
    /// At least one value.
    void Set(const void* values, std::uint32_t count) {
        m_count = count;
        if (count <= kHeld) {
            std::memcpy(m_held, values, std::size_t{count} * kWidth);
        } else {
            m_kept = values;
        }
    }
    /// Compared as bytes: a NaN is the same value as before, and -0 another one than 0.
    bool Are(const void* values, std::uint32_t count) const {
        if (m_count != count) return false;
        // A size that the compiler knows needs no call.
        if (count == kHeld) return std::memcmp(m_held, values, kHeld * kWidth) == 0;
        return std::memcmp(Data(), values, std::size_t{count} * kWidth) == 0;
    }
    std::uint32_t Count() const { return m_count; }
    const float* Floats() const { return static_cast<const float*>(Data()); }
    const std::int32_t* Integers() const { return static_cast<const std::int32_t*>(Data()); }

private:
    static constexpr std::size_t kWidth = 4;
    static constexpr std::uint32_t kHeld = 4;

    const void* Data() const { return m_count <= kHeld ? m_held : m_kept; }

    std::uint32_t m_count = 0;
    union {
        std::uint8_t m_held[kHeld * kWidth] = {};
        const void* m_kept;
    };
};

struct SUniformState {
    static constexpr std::uint32_t kNeverSet = 9999;
    static constexpr std::uint32_t kInteger = 0;
    static constexpr std::uint32_t kFloat = 1;
    static constexpr std::uint32_t kMatrix = 2;

    std::int32_t components = 0;
    std::uint32_t kind = kNeverSet;
    CShaderValues values;
};

struct SUniformLocation {
    std::int32_t location = 0;
    std::int32_t liveLocation = 0;
    TShared<CKSTLString> name;
};

/// The uniforms of a program by recorded location. Values change in every frame, names hardly ever,
/// so that those are in a table of their own; both tables have the same locations.
struct SProgramUniforms {
    TShared<TStateTable<SUniformLocation>> locations;
    TStateTable<SUniformState, 2> values;
};

struct SAttributeState {
    TShared<CKSTLString> name;
    std::uint32_t index = 0;
    std::uint8_t bound = 0;
    std::int32_t components = 0;
    CShaderValues values;
};

struct SAttribPointerState : SClientArrayState {
    std::uint8_t enabled = 0;
    std::uint8_t normalized = 0;

    bool operator==(const SAttribPointerState&) const = default;
};

struct SVertexArrayState {
    /// No context has more vertex attributes; an index beyond is left out of the record.
    static constexpr std::uint32_t kMaxAttributes = 32;

    std::uint32_t name = 0;
    std::uint32_t arrayBuffer = 0;
    std::uint32_t elementBuffer = 0;
    std::vector<SAttribPointerState> attributes;  ///< by index, as far as any was set
};

/// A parameter of textures: the enumerant and what it is before it is set.
struct STextureParameter {
    std::uint32_t pname;
    std::int32_t initial;
};
inline constexpr std::array<STextureParameter, 15> kTextureParameters = {{
    {GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_LINEAR},
    {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
    {GL_TEXTURE_WRAP_S, GL_REPEAT},
    {GL_TEXTURE_WRAP_T, GL_REPEAT},
    {GL_TEXTURE_BASE_LEVEL, 0},
    {GL_TEXTURE_COMPARE_FUNC, GL_ALWAYS},
    {GL_TEXTURE_COMPARE_MODE, GL_NONE},
    {GL_TEXTURE_MIN_LOD, -1000},
    {GL_TEXTURE_MAX_LOD, 1000},
    {GL_TEXTURE_MAX_LEVEL, 1000},
    {GL_TEXTURE_SWIZZLE_R, GL_RED},
    {GL_TEXTURE_SWIZZLE_G, GL_GREEN},
    {GL_TEXTURE_SWIZZLE_B, GL_BLUE},
    {GL_TEXTURE_SWIZZLE_A, GL_ALPHA},
    {GL_TEXTURE_WRAP_R, GL_REPEAT},
}};
/// The place of a parameter in the table; its size for one that it does not hold.
std::size_t TextureParameterIndex(std::uint32_t pname);
std::array<std::int32_t, 15> DefaultTextureParameters();

struct STextureImageState : SImageState {
    std::uint32_t bindTarget = 0;  ///< GL_TEXTURE_CUBE_MAP for a face, else as `target`
    std::int32_t depth = 0;
    std::array<std::int32_t, 15> parameters = DefaultTextureParameters();

    /// -1 for an image of two dimensions.
    std::int32_t Layers() const;
};

/// Images of a texture by face (0 but for cube maps), then level.
struct STextureFaces : TStateTable<TStateTable<STextureImageState, 2>> {
    /// There is an image at face 0, level 0: the one that holds the parameters.
    bool hasFirst = false;
};

/// The texture that each unit has bound.
using SUnitBindings = std::array<std::uint32_t, kTextureUnits>;

/// The capabilities of glEnable, in the order of `capabilities`.
inline constexpr std::array<std::uint32_t, 9> kEs2Capabilities = {
    GL_BLEND,           GL_CULL_FACE,           GL_DEPTH_TEST,
    GL_DITHER,          GL_POLYGON_OFFSET_FILL, GL_SAMPLE_ALPHA_TO_COVERAGE,
    GL_SAMPLE_COVERAGE, GL_SCISSOR_TEST,        GL_STENCIL_TEST};

class CEs2State : public TContextState<SVertexArrayState> {
public:
    /// With the values of a new context, and program 0.
    CEs2State();

    std::uint16_t apiVersion = 2;  ///< 3 once an ES3 context is in use
    TShared<SUnitBindings> binding2D;
    TShared<SUnitBindings> bindingCube;
    TShared<SUnitBindings> bindingOther;  ///< of targets that no call of the record's sets
    TShared<SUnitBindings> binding3D;
    TShared<SUnitBindings> binding2DArray;
    std::uint32_t blendEquationAlpha = GL_FUNC_ADD;
    std::uint32_t blendEquationRgb = GL_FUNC_ADD;
    std::array<float, 4> blendColor{};
    std::uint32_t blendSrcRgb = GL_ONE;
    std::uint32_t blendDstRgb = GL_ZERO;
    std::uint32_t blendSrcAlpha = GL_ONE;
    std::uint32_t blendDstAlpha = GL_ZERO;
    std::array<std::uint8_t, kEs2Capabilities.size()> capabilities{};
    std::uint32_t generateMipmapHint = GL_DONT_CARE;
    TShared<TStateTable<SProgramState>> programs;
    /// A copy of the program in use, which outlives its entry.
    SProgramState currentProgram;
    std::uint8_t currentProgramDeletePending = 0;
    std::uint8_t shaderCompilerReleased = 1;
    TShared<TStateTable<SShaderState>> shaders;
    SStencilState stencilFront;
    SStencilState stencilBack;
    TShared<TStateTable<TShared<STextureFaces>>> textures;
    /// By program, then recorded location.
    TShared<TStateTable<TShared<SProgramUniforms>>> uniforms;
    /// Constant attribute values, by program, then index.
    TShared<TStateTable<TShared<TStateTable<SAttributeState>>>> attributeValues;
    /// What glBindAttribLocation set, by the same keys.
    TShared<TStateTable<TShared<TStateTable<SAttributeState>>>> attributeBindings;

    /// The image at (name, face, level); null when there is none.
    const STextureImageState* FindImage(std::uint32_t name, std::uint32_t face,
                                        std::uint32_t level) const;
    /// Whether there is an image at (name, 0, 0).
    bool HasFirstImage(std::uint32_t name) const;
    /// The image to change; a default one is made where there is none.
    STextureImageState& WriteImage(std::uint32_t name, std::uint32_t face, std::uint32_t level);
};

}  // namespace kestrail
