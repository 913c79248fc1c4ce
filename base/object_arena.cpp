#include "base/object_arena.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace kestrail {
namespace {

constexpr std::size_t kFirstChunk = std::size_t{64} << 10;
/// What the processor maps at once, where the system lets it. Brought in page by page, the memory
/// of a call costs as much time as reading its record.
constexpr std::size_t kLargePage = std::size_t{2} << 20;

}  // namespace

void CObjectArena::NextChunk(std::size_t wanted) {
    std::size_t size = m_chunk == nullptr ? kFirstChunk : kLargePage;
    while (size < wanted + sizeof(SChunk)) size *= 2;
    void* const memory = std::aligned_alloc(std::min(size, kLargePage), size);
    if (memory == nullptr) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
    if (size >= kLargePage) madvise(memory, size, MADV_HUGEPAGE);
#endif
    m_chunk = new (memory) SChunk{m_chunk, size};
    m_next = reinterpret_cast<std::byte*>(m_chunk + 1);
    m_left = size - sizeof(SChunk);
    ASAN_POISON_MEMORY_REGION(m_next, m_left);
}

void CObjectArena::FreeLast() {
    SChunk* const last = m_chunk;
    m_chunk = last->before;
    ASAN_UNPOISON_MEMORY_REGION(last, last->size);
    std::free(last);
}

void CObjectArena::StartAgain() {
    if (m_chunk == nullptr) return;
    while (m_chunk->before != nullptr) FreeLast();
    m_next = reinterpret_cast<std::byte*>(m_chunk + 1);
    m_left = m_chunk->size - sizeof(SChunk);
    ASAN_POISON_MEMORY_REGION(m_next, m_left);
}

CObjectArena::~CObjectArena() {
    while (m_chunk != nullptr) FreeLast();
}

}  // namespace kestrail
