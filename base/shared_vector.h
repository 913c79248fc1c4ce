// A long array that copies share except for what one of them changes: a tree of short runs, in
// which a change copies the runs on the way to the item. For records that are copied at every frame
// and change in a few items of many. For one thread.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace kestrail {

/// A run at the tree's end holds 2 to the power of `kRunBits` items.
template <typename T, std::uint32_t kRunBits>
class TSharedVector {
public:
    static constexpr std::uint32_t kRun = 1u << kRunBits;

    TSharedVector() = default;
    TSharedVector(const TSharedVector& other) : m_root(other.m_root), m_size(other.m_size) {
        if (m_root != nullptr) ++m_root->owners;
    }
    TSharedVector(TSharedVector&& other) noexcept
        : m_root(std::exchange(other.m_root, nullptr)), m_size(std::exchange(other.m_size, 0)) {}
    TSharedVector& operator=(TSharedVector other) noexcept {
        std::swap(m_root, other.m_root);
        std::swap(m_size, other.m_size);
        return *this;
    }
    ~TSharedVector() { Release(m_root, Height(m_size)); }

    std::uint32_t Size() const { return m_size; }

    /// The item at an index below `Size()`.
    const T& operator[](std::uint32_t index) const {
        const SBlock* block = m_root;
        for (std::uint32_t level = Height(m_size); level > 0; --level) {
            block = block->Children()[ChildOf(index, level)];
        }
        return block->Items()[index % kRun];
    }
    /// The item to change. References that were read before may be those of another owner now.
    T& Write(std::uint32_t index) {
        SBlock** at = &m_root;
        for (std::uint32_t level = Height(m_size); level > 0; --level) {
            Own(*at, level, (*at)->count);
            at = &(*at)->Children()[ChildOf(index, level)];
        }
        Own(*at, 0, (*at)->count);
        return (*at)->Items()[index % kRun];
    }
    /// Adds a default item at the end.
    T& Append() {
        const std::uint32_t index = m_size;
        std::uint32_t level = Height(index);
        if (Height(index + 1) != level) {
            SBlock* above = Allocate(++level, 2);
            above->Children()[above->count++] = m_root;
            m_root = above;
        }
        SBlock** at = &m_root;
        for (; level > 0; --level) {
            const std::uint32_t child = ChildOf(index, level);
            Own(*at, level, child + 1);
            if (child == (*at)->count) {
                (*at)->Children()[child] = Allocate(level - 1, 1);
                ++(*at)->count;
            }
            at = &(*at)->Children()[child];
        }
        Own(*at, 0, index % kRun + 1);
        T* made = new ((*at)->Items() + (*at)->count) T();
        ++(*at)->count;
        ++m_size;
        return *made;
    }
    /// Of a vector that is not empty.
    void RemoveLast() {
        const std::uint32_t height = Height(m_size);
        RemoveLastOf(m_root, height);
        --m_size;
        if (Height(m_size) == height) return;
        // The only child takes the place of the root.
        SBlock* child = m_root->Children()[0];
        ++child->owners;
        Release(m_root, height);
        m_root = child;
    }

    /// The items of a vector that is no longer than a run.
    const T* OnlyRun() const { return m_root != nullptr ? m_root->Items() : nullptr; }
    /// Whether both share one content: equal then without a look at it.
    bool SameAs(const TSharedVector& other) const { return m_root == other.m_root; }

private:
    static constexpr std::uint32_t kBranchBits = 5;

    /// A run of items at level 0, of blocks of the level below above it.
    struct alignas(std::max(alignof(T), alignof(void*))) SBlock {
        std::uint32_t owners = 1;
        std::uint32_t count = 0;
        std::uint32_t capacity = 0;

        T* Items() { return reinterpret_cast<T*>(this + 1); }
        const T* Items() const { return reinterpret_cast<const T*>(this + 1); }
        SBlock** Children() { return reinterpret_cast<SBlock**>(this + 1); }
        SBlock* const* Children() const { return reinterpret_cast<SBlock* const*>(this + 1); }
    };
    static_assert(alignof(SBlock) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

    /// The level of the root.
    static std::uint32_t Height(std::uint32_t size) {
        if (size <= kRun) return 0;
        const auto bits = static_cast<std::uint32_t>(std::bit_width((size - 1) >> kRunBits));
        return (bits + kBranchBits - 1) / kBranchBits;
    }
    static std::uint32_t ChildOf(std::uint32_t index, std::uint32_t level) {
        return index >> (kRunBits + (level - 1) * kBranchBits) & ((1u << kBranchBits) - 1);
    }

    static SBlock* Allocate(std::uint32_t level, std::uint32_t capacity) {
        const std::size_t each = level == 0 ? sizeof(T) : sizeof(void*);
        auto* block = new (::operator new(sizeof(SBlock) + capacity * each)) SBlock;
        block->capacity = capacity;
        return block;
    }
    /// Makes the block this vector's alone, with room for `needed` entries.
    static void Own(SBlock*& block, std::uint32_t level, std::uint32_t needed) {
        if (block == nullptr) {
            block = Allocate(level, needed);
            return;
        }
        if (block->owners == 1 && block->capacity >= needed) return;
        const bool grows = block->capacity < needed;
        SBlock* own = Allocate(level, grows ? std::bit_ceil(needed) : needed);
        own->count = block->count;
        if (level > 0) {
            std::copy_n(block->Children(), block->count, own->Children());
            for (std::uint32_t i = 0; i < own->count; ++i) ++own->Children()[i]->owners;
        } else if (block->owners > 1) {
            std::uninitialized_copy_n(block->Items(), block->count, own->Items());
        } else {
            std::uninitialized_move_n(block->Items(), block->count, own->Items());
        }
        Release(block, level);
        block = own;
    }
    // As deep as the tree, which seven levels are enough for.
    // NOLINTBEGIN(misc-no-recursion)
    static void RemoveLastOf(SBlock*& block, std::uint32_t level) {
        Own(block, level, block->count);
        if (level == 0) {
            std::destroy_at(block->Items() + --block->count);
        } else {
            SBlock*& last = block->Children()[block->count - 1];
            RemoveLastOf(last, level - 1);
            if (last == nullptr) --block->count;
        }
        if (block->count > 0) return;
        Release(block, level);
        block = nullptr;
    }
    static void Release(SBlock* block, std::uint32_t level) {
        if (block == nullptr || --block->owners > 0) return;
        if (level == 0) {
            std::destroy_n(block->Items(), block->count);
        } else {
            for (std::uint32_t i = 0; i < block->count; ++i) {
                Release(block->Children()[i], level - 1);
            }
        }
        ::operator delete(block);
    }
    // NOLINTEND(misc-no-recursion)

    SBlock* m_root = nullptr;
    std::uint32_t m_size = 0;
};

}  // namespace kestrail
