// Copy on write for records that are copied far more often than changed: a copy shares its content
// with the original until one of the two is written. For one thread.
#pragma once

#include <cstdint>
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
    /// A copy, which shares nothing with values that were never written.
    T Copy() const { return m_node != nullptr ? m_node->value : T{}; }

    /// The value to change. References that were read before it may be those of another owner now.
    T& Write() {
        if (m_node == nullptr || m_node->owners > 1) [[unlikely]]
            Own();
        return m_node->value;
    }

    /// Whether both share one content: equal then without a look at it.
    bool SameAs(const TShared& other) const { return m_node == other.m_node; }
    /// The same for all that share one content while they do.
    const void* Identity() const { return m_node; }

private:
    struct SNode {
        T value;
        std::uint32_t owners = 1;
    };

    /// Apart from where it is asked, which is often, and in vain.
    [[gnu::noinline]] void Own() {
        if (m_node == nullptr) {
            // Not a copy of the default: what that shares is counted, by whatever thread.
            m_node = new SNode{T{}};
            return;
        }
        SNode* const copy = new SNode{m_node->value};
        --m_node->owners;
        m_node = copy;
    }

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

}  // namespace kestrail
