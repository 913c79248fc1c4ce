// Room for objects that are made by the million and go away together: the calls of a trace, all of
// them or, streamed, each before the next. For one thread at a time.
#pragma once

#include <sanitizer/asan_interface.h>

#include <cstddef>

namespace kestrail {

/// Hands out pieces of large chunks, one behind the other. No piece may outlive the arena.
class CObjectArena {
public:
    /// What the pieces are aligned to.
    static constexpr std::size_t kAlignment = 8;

    CObjectArena() = default;
    ~CObjectArena();
    CObjectArena(const CObjectArena&) = delete;
    CObjectArena& operator=(const CObjectArena&) = delete;

    /// `size` bytes. Throws `std::bad_alloc`.
    void* Take(std::size_t size) {
        const std::size_t rounded = (size + kGap + kAlignment - 1) & ~(kAlignment - 1);
        if (rounded > m_left) NextChunk(rounded);
        void* const piece = m_next;
        m_next += rounded;
        m_left -= rounded;
        ASAN_UNPOISON_MEMORY_REGION(piece, size);
        return piece;
    }
    /// A piece is done with. Its room stays taken; the address sanitizer sees who still reaches it.
    static void GiveBack([[maybe_unused]] void* piece, [[maybe_unused]] std::size_t size) {
        ASAN_POISON_MEMORY_REGION(piece, size);
    }
    /// All pieces are done with, and their room is used again.
    void StartAgain();

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
    void FreeLast();

    /// The one that pieces are taken from; those before it are full.
    SChunk* m_chunk = nullptr;
    std::byte* m_next = nullptr;
    std::size_t m_left = 0;
};

}  // namespace kestrail
