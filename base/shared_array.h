// An array that copies share until one of them changes, in one block of memory: for the many short
// lists of a record that is copied far more often than changed. For one thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace kestrail {

template <typename T>
class TSharedArray {
public:
    TSharedArray() = default;
    /// `count` default items.
    explicit TSharedArray(std::uint32_t count) {
        if (count == 0) return;
        Renew(count);
        std::uninitialized_value_construct_n(m_block->Items(), count);
        m_block->count = count;
    }
    TSharedArray(const TSharedArray& other) : m_block(other.m_block) {
        if (m_block != nullptr) ++m_block->owners;
    }
    TSharedArray(TSharedArray&& other) noexcept : m_block(std::exchange(other.m_block, nullptr)) {}
    TSharedArray& operator=(TSharedArray other) noexcept {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~TSharedArray() { Release(); }

    std::uint32_t Size() const { return m_block != nullptr ? m_block->count : 0; }
    bool Empty() const { return Size() == 0; }
    const T* begin() const { return m_block != nullptr ? m_block->Items() : nullptr; }
    const T* end() const {
        return m_block != nullptr ? m_block->Items() + m_block->count : nullptr;
    }
    const T& operator[](std::uint32_t index) const { return m_block->Items()[index]; }

    /// The item to change, of an index below `Size()`. References that were read before may be
    /// those of another owner now.
    T& Write(std::uint32_t index) {
        if (m_block->owners > 1) Renew(m_block->count);
        return m_block->Items()[index];
    }
    /// All items to change; null when there are none.
    T* WriteAll() { return Empty() ? nullptr : &Write(0); }
    /// Adds a default item at the end.
    T& Append() {
        const std::uint32_t count = Size();
        const bool full = m_block == nullptr || count == m_block->capacity;
        if (full || m_block->owners > 1) Renew(full ? std::max(1u, count * 2) : m_block->capacity);
        T* made = new (m_block->Items() + count) T();
        ++m_block->count;
        return *made;
    }
    /// Of an array that is not empty.
    void RemoveLast() {
        if (m_block->count == 1) return Release();
        if (m_block->owners > 1) Renew(m_block->count);
        std::destroy_at(m_block->Items() + --m_block->count);
    }

    /// Whether both share one content: equal then without a look at it.
    bool SameAs(const TSharedArray& other) const { return m_block == other.m_block; }

private:
    struct alignas(alignof(T) > 4 ? alignof(T) : 4) SBlock {
        std::uint32_t owners = 1;
        std::uint32_t count = 0;
        std::uint32_t capacity = 0;

        T* Items() { return reinterpret_cast<T*>(this + 1); }
    };
    static_assert(alignof(SBlock) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

    /// A block of this owner's own with the items and room for `capacity`, which is at least as
    /// many.
    void Renew(std::uint32_t capacity) {
        struct SFree {
            void operator()(SBlock* block) const { ::operator delete(block); }
        };
        void* room = ::operator new (sizeof(SBlock) + std::size_t{capacity} * sizeof(T));
        std::unique_ptr<SBlock, SFree> block(new (room) SBlock);
        block->capacity = capacity;
        if (m_block != nullptr) {
            if (m_block->owners > 1) {
                std::uninitialized_copy_n(m_block->Items(), m_block->count, block->Items());
            } else {
                std::uninitialized_move_n(m_block->Items(), m_block->count, block->Items());
            }
            block->count = m_block->count;
        }
        Release();
        m_block = block.release();
    }
    void Release() {
        if (m_block != nullptr && --m_block->owners == 0) {
            std::destroy_n(m_block->Items(), m_block->count);
            ::operator delete(m_block);
        }
        m_block = nullptr;
    }

    SBlock* m_block = nullptr;
};

}  // namespace kestrail
