// Room for objects of one kind that are made by the million and go away together, or one after the
// other: the calls of a trace, held whole or streamed. For one thread.
#pragma once

#include <sanitizer/asan_interface.h>

#include <cstddef>

namespace kestrail {

/// Hands out pieces of large chunks, one behind the other. Room is used again when every piece has
/// been given back: one that outlives the others keeps all that was taken since.
class CObjectArena {
public:
    /// What the pieces are aligned to.
    static constexpr std::size_t kAlignment = 8;

    /// `size` bytes. Throws `std::bad_alloc`.
    void* Take(std::size_t size) {
        const std::size_t rounded = (size + kGap + kAlignment - 1) & ~(kAlignment - 1);
        if (rounded > m_left) NextChunk(rounded);
        void* const piece = m_next;
        m_next += rounded;
        m_left -= rounded;
        ++m_taken;
        ASAN_UNPOISON_MEMORY_REGION(piece, size);
        return piece;
    }
    /// Every piece once, with the size that it was taken with.
    void GiveBack(void* piece, std::size_t size) {
        ASAN_POISON_MEMORY_REGION(piece, size);
        if (--m_taken == 0) StartAgain();
    }

private:
    /// Under the address sanitizer, which then sees what reaches past a piece.
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
    static constexpr std::size_t kGap = kAlignment;
#else
    static constexpr std::size_t kGap = 0;
#endif

    /// Stands at the start of the chunk that it describes.
    struct alignas(std::max_align_t) SChunk {
        SChunk* before;
        std::size_t size;
    };

    void NextChunk(std::size_t wanted);
    void StartAgain();

    /// The one that pieces are taken from; those before it are full.
    SChunk* m_chunk = nullptr;
    std::byte* m_next = nullptr;
    std::size_t m_left = 0;
    std::size_t m_taken = 0;
};

}  // namespace kestrail
