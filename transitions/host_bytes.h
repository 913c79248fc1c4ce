// Contents of a record on their way to the host, which reads as much as a call's other arguments
// say.
#pragma once

#include <cstdint>
#include <vector>

#include "calls/reach/pixel_store.h"
#include "state/shared_bytes.h"

namespace kestrail {

/// Contents on their way to the host, put together for as long as this lives where they stand in
/// pieces.
class CHostBytes {
public:
    /// The contents, or null when they are fewer than the `needed` bytes that the host reads.
    const void* Whole(const CSharedBytes& contents, std::int64_t needed) {
        return static_cast<std::int64_t>(contents.Size()) >= needed ? contents.Get(m_room)
                                                                    : nullptr;
    }

    /// An image's pixels, which take `packed` bytes with nothing between rows. A seek leaves the
    /// host's unpack alignment as it finds it, so that the host may read more than an image of
    /// another alignment has, `needed` bytes: zeros follow then. Null when there are fewer than the
    /// packed ones, and when the host would read far more than alignments can make: then it reads
    /// by a row length that an earlier frame has left, and no image of its own.
    const void* Pixels(const CSharedBytes& contents, std::int64_t packed, std::int64_t needed) {
        const auto size = static_cast<std::int64_t>(contents.Size());
        if (size >= needed) return contents.Get(m_room);
        if (size < packed || needed > kPadding * packed) return nullptr;
        const std::uint8_t* bytes = contents.Get(m_room);
        if (bytes != m_room.data()) m_room.assign(bytes, bytes + size);
        m_room.resize(static_cast<std::size_t>(needed));
        return m_room.data();
    }

private:
    /// A row of one byte takes eight at most.
    static constexpr std::int64_t kPadding = 8;

    std::vector<std::uint8_t> m_room;
};

/// Rows without anything between them.
inline SPixelStore TightlyPacked() {
    SPixelStore store;
    store.unpackAlignment = 1;
    return store;
}

}  // namespace kestrail
