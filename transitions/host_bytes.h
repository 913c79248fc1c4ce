// Contents of a record on their way to the host, which reads as much as a call's other arguments
// say.
#pragma once

#include <cstdint>
#include <vector>

#include "base/shared.h"
#include "exec/pixel_store.h"

namespace kestrail {

/// The contents, or null when they are fewer than the `needed` bytes that the host reads.
inline const void* HostBytes(const CSharedBytes& contents, std::int64_t needed) {
    const bool enough = static_cast<std::int64_t>(contents.Size()) >= needed;
    return enough ? contents.Data() : nullptr;
}

/// Rows without anything between them.
inline SPixelStore TightlyPacked() {
    SPixelStore store;
    store.unpackAlignment = 1;
    return store;
}

/// An image's pixels, which take `packed` bytes with nothing between rows. A seek leaves the host's
/// unpack alignment as it finds it, so that the host may read more than an image of another
/// alignment has, `needed` bytes: zeros follow then, in `padded`. Null when there are fewer than
/// the packed ones.
inline const void* HostPixels(const CSharedBytes& contents, std::int64_t packed,
                              std::int64_t needed, std::vector<std::uint8_t>& padded) {
    const auto size = static_cast<std::int64_t>(contents.Size());
    if (size >= needed) return contents.Data();
    if (size < packed) return nullptr;
    padded.assign(contents.Data(), contents.Data() + size);
    padded.resize(static_cast<std::size_t>(needed));
    return padded.data();
}

}  // namespace kestrail
