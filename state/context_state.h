// What the records of ES1 and of ES2 contexts have alike. All names are recorded ones. A copy is
// deep in meaning; in memory, tables and contents stay shared until one side changes.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "base/enumerants.h"
#include "base/shared.h"
#include "state/shared_bytes.h"
#include "state/state_table.h"

namespace kestrail {

inline constexpr std::uint32_t kTextureUnits = 32;

struct SBufferState {
    std::uint32_t name = 0;
    std::uint32_t target = 0;
    CSharedBytes data;
    std::uint32_t size = 0;
    std::uint32_t usage = 0;
};

struct SAttachmentState {
    std::uint32_t name = 0;
    std::int32_t level = 0;
    std::uint32_t cubeFace = 0;  ///< target of a cube map's face, 0 for GL_TEXTURE_2D
    std::uint32_t kind = 0;      ///< GL_TEXTURE, GL_RENDERBUFFER, or 0 when empty
};

struct SFramebufferState {
    std::uint32_t name = 0;
    std::uint8_t everBound = 0;
    SAttachmentState depth;
    SAttachmentState stencil;
    SAttachmentState depthStencil;
    /// By attachment number, as far as any was set.
    TShared<std::vector<SAttachmentState>> colors;
    /// No context has more; what is beyond is left out of the record.
    static constexpr std::uint32_t kMaxDrawBuffers = 16;
    TShared<std::vector<std::uint32_t>> drawBuffers;
};

struct SRenderbufferState {
    std::uint32_t name = 0;
    std::uint8_t everBound = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t internalFormat = 0;
};

struct SImageState {
    std::uint32_t target = 0;
    std::uint32_t name = 0;
    std::int32_t level = 0;
    CSharedBytes data;
    std::uint32_t format = 0;
    std::int32_t internalFormat = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t type = 0;
    std::int32_t unpackAlignment = 0;
    std::int32_t border = 0;
    std::uint32_t imageSize = 0;
    std::uint8_t compressed = 0;
};

struct SClientArrayState {
    std::uint32_t buffer = 0;
    std::int32_t size = 0;
    std::uint32_t type = 0;
    std::int32_t stride = 0;
    std::uint32_t pointer = 0;

    bool operator==(const SClientArrayState&) const = default;
};

/// Of one face where they have their own.
struct SStencilState {
    std::uint32_t func = GL_ALWAYS;
    std::int32_t ref = 0;
    std::uint32_t valueMask = 0xFFFFFFFFu;
    std::uint32_t writeMask = 0xFFFFFFFFu;
    std::uint32_t fail = GL_KEEP;
    std::uint32_t depthFail = GL_KEEP;
    std::uint32_t depthPass = GL_KEEP;
};

/// The plain values, with those of a new context, and the tables of objects.
template <typename VertexArray>
class TContextState {
public:
    std::int32_t textureUnitsUsed = 1;
    std::uint32_t activeTexture = GL_TEXTURE0;
    TShared<TStateTable<SBufferState>> buffers;
    std::array<float, 4> clearColor{};
    float clearDepth = 1.0F;
    std::int32_t clearStencil = 0;
    std::array<std::uint8_t, 4> colorMask = {1, 1, 1, 1};
    std::uint32_t cullFaceMode = GL_BACK;
    std::uint32_t depthFunc = GL_LESS;
    std::uint8_t depthMask = 1;
    float depthRangeNear = 0.0F;
    float depthRangeFar = 1.0F;
    TShared<TStateTable<SFramebufferState>> framebuffers;
    std::uint32_t boundFramebuffer = 0;
    std::uint32_t frontFace = GL_CCW;
    std::int32_t packAlignment = 4;
    std::int32_t unpackAlignment = 4;
    float polygonOffsetFactor = 0.0F;
    float polygonOffsetUnits = 0.0F;
    TShared<TStateTable<SRenderbufferState>> renderbuffers;
    std::uint32_t boundRenderbuffer = 0;
    float sampleCoverageValue = 1.0F;
    std::uint8_t sampleCoverageInvert = 0;
    std::array<std::int32_t, 4> scissorBox{};
    std::array<std::int32_t, 4> viewport{};
    std::uint32_t currentVertexArray = 0;
    TShared<TStateTable<TShared<VertexArray>>> vertexArrays;

    /// The vertex array in use; an empty one while no call has written it.
    const VertexArray& CurrentVertexArray() const {
        static const VertexArray s_none;
        const TShared<VertexArray>* array = vertexArrays->Find(currentVertexArray);
        return array != nullptr ? **array : s_none;
    }
    VertexArray& WriteCurrentVertexArray() {
        VertexArray& array = vertexArrays.Write().GetOrCreate(currentVertexArray).Write();
        array.name = currentVertexArray;
        return array;
    }
    /// Whether any call has set it, if only to what it is by default: a restore then sets it, too.
    bool HasCurrentVertexArray() const { return vertexArrays->Find(currentVertexArray) != nullptr; }
    /// The unit of an enumerant; `kTextureUnits` for one that the record does not hold.
    static std::uint32_t UnitOf(std::uint32_t texture) {
        return std::min(texture - GL_TEXTURE0, kTextureUnits);
    }
    std::uint32_t ActiveUnit() const { return UnitOf(activeTexture); }
    /// Units that the application used, as far as the record holds them.
    std::uint32_t Units() const {
        return static_cast<std::uint32_t>(
            std::clamp(textureUnitsUsed, 0, static_cast<std::int32_t>(kTextureUnits)));
    }
};

}  // namespace kestrail
