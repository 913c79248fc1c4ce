// A growing run of characters, made for building many lines fast: appending never allocates once
// the buffer has grown to the size of its longest content.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kestrail {

/// The most characters that `PutUnsigned` writes, and one for a sign.
inline constexpr std::size_t kLongestDecimal = 21;
/// Writes "%llu" at `to`; the end of what was written.
char* PutUnsigned(char* to, std::uint64_t value);
/// Writes "%lld" at `to`; the end of what was written.
inline char* PutSigned(char* to, std::int64_t value) {
    if (value >= 0) return PutUnsigned(to, static_cast<std::uint64_t>(value));
    *to = '-';
    return PutUnsigned(to + 1, 0 - static_cast<std::uint64_t>(value));
}
/// Writes the text at `to`; the end of what was written.
inline char* PutText(char* to, std::string_view text) {
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

class TextWriter {
public:
    TextWriter() = default;
    ~TextWriter() { std::free(m_data); }
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    const char* Data() const { return m_data; }
    std::size_t Size() const { return m_size; }
    std::string_view View() const { return {m_data, m_size}; }

    void Clear() { m_size = 0; }
    /// Cuts the content to `size` bytes; a larger size leaves it as it is.
    void Truncate(std::size_t size) {
        if (size < m_size) m_size = size;
    }

    void Append(char c) {
        *Reserve(1) = c;
        ++m_size;
    }
    void Append(std::string_view text) {
        // An empty view may hold a null pointer, which memcpy must not see.
        if (text.empty()) return;
        std::memcpy(Reserve(text.size()), text.data(), text.size());
        m_size += text.size();
    }
    /// "%llu".
    void AppendUnsigned(std::uint64_t value) {
        // Most numbers of a call are names, counts and indices of one digit.
        if (value < 10) return Append(static_cast<char>('0' + value));
        CommitTo(PutUnsigned(Reserve(kLongestDecimal), value));
    }
    /// "%lld".
    void AppendSigned(std::int64_t value) {
        if (value >= 0) return AppendUnsigned(static_cast<std::uint64_t>(value));
        Append('-');
        AppendUnsigned(0 - static_cast<std::uint64_t>(value));
    }
    /// Lower-case hexadecimal digits without prefix, "%llx".
    void AppendHex(std::uint64_t value);
    /// Upper-case hexadecimal digits without prefix, "%llX".
    void AppendUpperHex(std::uint64_t value);
    /// "%f": six decimals, the same text as printf gives for the value.
    void AppendFixed(float value);
    /// Appends what printf would print for `format`.
    void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void AppendFormatV(const char* format, std::va_list arguments)
        __attribute__((format(printf, 2, 0)));

    /// Room for `count` more bytes, for a caller that writes them itself and then calls `Commit`.
    char* Reserve(std::size_t count) {
        if (m_capacity - m_size < count) Grow(count);
        return m_data + m_size;
    }
    void Commit(std::size_t count) { m_size += count; }
    /// Commits what was written up to `end`.
    void CommitTo(const char* end) { m_size = static_cast<std::size_t>(end - m_data); }

private:
    void Grow(std::size_t count);

    char* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

}  // namespace kestrail
