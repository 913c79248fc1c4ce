// Copy on write for records that are copied far more often than changed: a copy shares its content
// with the original until one of the two is written. For one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace kestrail {

/// A value of type T. Copying costs a count, the first `Write` after a copy a copy of T.
template <typename T>
class TShared {
public:
    TShared() = default;
    explicit TShared(T value) : m_node(new SNode{std::move(value)}) {}
    TShared(const TShared& other) : m_node(other.m_node) {
        if (m_node != nullptr) ++m_node->owners;
    }
    TShared(TShared&& other) noexcept : m_node(std::exchange(other.m_node, nullptr)) {}
    TShared& operator=(TShared other) noexcept {
        std::swap(m_node, other.m_node);
        return *this;
    }
    ~TShared() { Release(); }

    const T& operator*() const { return m_node != nullptr ? m_node->value : Default(); }
    const T* operator->() const { return &**this; }

    /// The value to change. References that were read before it may be those of another owner now.
    T& Write() {
        if (m_node == nullptr) {
            m_node = new SNode{Default()};
        } else if (m_node->owners > 1) {
            SNode* copy = new SNode{m_node->value};
            --m_node->owners;
            m_node = copy;
        }
        return m_node->value;
    }

    /// Whether both share one content: equal then without a look at it.
    bool SameAs(const TShared& other) const { return m_node == other.m_node; }

private:
    struct SNode {
        T value;
        std::uint32_t owners = 1;
    };

    /// What a value that was never written reads as.
    static const T& Default() {
        static const T value{};
        return value;
    }
    void Release() {
        if (m_node != nullptr && --m_node->owners == 0) delete m_node;
        m_node = nullptr;
    }

    SNode* m_node = nullptr;
};

/// A run of bytes: those of a recorded call, which outlive every record, or a shared copy. Two runs
/// with the same pointer have the same content.
class CSharedBytes {
public:
    CSharedBytes() = default;

    /// Refers to bytes that somebody else keeps.
    static CSharedBytes Borrow(const std::uint8_t* data, std::size_t size) {
        CSharedBytes bytes;
        bytes.m_data = data;
        bytes.m_size = data != nullptr ? size : 0;
        return bytes;
    }
    static CSharedBytes Zeroed(std::size_t size) {
        // Zeroed pages take no memory until they are written.
        void* zeros = std::calloc(size, 1);
        if (zeros == nullptr) throw std::bad_alloc();
        CSharedBytes bytes;
        bytes.m_copy = std::shared_ptr<std::uint8_t[]>(static_cast<std::uint8_t*>(zeros),
                                                       [](std::uint8_t* copy) { std::free(copy); });
        bytes.m_data = bytes.m_copy.get();
        bytes.m_size = size;
        return bytes;
    }

    const std::uint8_t* Data() const { return m_data; }
    std::size_t Size() const { return m_size; }
    bool Borrowed() const { return m_data != nullptr && !m_copy; }

    /// The bytes to change; null when there are none.
    std::uint8_t* Write() {
        if (m_data == nullptr) return nullptr;
        if (!m_copy || m_copy.use_count() > 1) {
            CSharedBytes own = Zeroed(m_size);
            std::memcpy(own.m_copy.get(), m_data, m_size);
            *this = std::move(own);
        }
        return m_copy.get();
    }

private:
    const std::uint8_t* m_data = nullptr;
    std::size_t m_size = 0;
    std::shared_ptr<std::uint8_t[]> m_copy;
};

}  // namespace kestrail
