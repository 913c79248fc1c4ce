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
        AppendDigits(value);
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

private:
    void Grow(std::size_t count);
    void AppendDigits(std::uint64_t value);

    char* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

}  // namespace kestrail
