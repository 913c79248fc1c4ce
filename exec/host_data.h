// Captured bytes on their way to the host. The host reads as much as the other arguments of a call
// say, and a damaged record may hold less: every such call is measured here before it is made.
#pragma once

#include <cstdint>

#include "base/enumerants.h"
#include "calls/model/data_values.h"
#include "exec/pixel_store.h"

namespace kestrail {

struct SHostData {
    const void* pointer;
    /// False when the host would read past the captured bytes.
    bool sound;
};

/// The pointer to pass for `block`, of which the host reads `needed` bytes: the captured bytes; or,
/// when there are none, the recorded pointer as an offset where a buffer is bound for it, else
/// null. `nullAllowed`: the entry point knows null.
SHostData HostData(const SBlock& block, std::int64_t needed, bool nullAllowed, bool bufferBound);

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

/// A recorded address or offset as an argument.
inline const void* AsPointer(std::uint32_t recorded) {
    return reinterpret_cast<const void*>(std::uintptr_t{recorded});
}

}  // namespace kestrail
