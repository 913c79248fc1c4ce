// How far the host reads behind the pointers of a call, as its other arguments say.
#pragma once

#include <cstdint>

#include "base/enumerants.h"
#include "calls/reach/pixel_store.h"

namespace kestrail {

/// How many bytes the host reads of a 2D image through `store`, the skipped ones included.
std::int64_t ImageBytes(std::uint32_t format, std::uint32_t type, std::int32_t width,
                        std::int32_t height, const SPixelStore& store);
/// The same of a 3D image, which alone knows images to skip and an image height.
std::int64_t ImageBytes(std::uint32_t format, std::uint32_t type, std::int32_t width,
                        std::int32_t height, std::int32_t depth, const SPixelStore& store);

/// Whether a driver unpacks a compressed image by itself, from memory alone: those with a palette.
inline bool IsPaletted(std::uint32_t internalFormat) {
    return internalFormat >= GL_PALETTE4_RGB8_OES && internalFormat <= GL_PALETTE8_RGB5_A1_OES;
}

/// Bytes of one component of a vertex array or an index.
std::int64_t ComponentBytes(std::uint32_t type);
/// Bytes of one vertex of `size` components.
std::int64_t VertexBytes(std::uint32_t type, std::int32_t size);

/// How many values the host reads for a parameter name.
std::uint32_t ParameterCount(std::uint32_t pname);
/// How many values a glClearBuffer of that buffer reads.
std::uint32_t ClearValueCount(std::uint32_t buffer);

/// How far a draw reads into a client array.
struct SArrayReach {
    std::int64_t vertexBytes = 0;
    /// From one vertex to the next; 0 where they are tightly packed.
    std::int64_t stride = 0;
    std::int64_t vertices = 0;

    /// Up to the end of the last vertex.
    std::int64_t Bytes() const;
};

/// As many vertices as indices of that type can tell apart; 0 for another type, which no host
/// draws.
std::int64_t IndexLimit(std::uint32_t type);
/// One more than the highest of `count` indices of that type. With `restart` the highest number of
/// the type is no vertex.
std::int64_t VerticesOf(const void* indices, std::int32_t count, std::uint32_t type, bool restart);

}  // namespace kestrail
