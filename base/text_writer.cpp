#include "base/text_writer.h"

#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <new>

namespace kestrail {
namespace {

/// Longer than any 64-bit number.
constexpr std::size_t kLongestInteger = 24;
/// Longer than any float with six decimals.
constexpr std::size_t kLongestFloat = 64;

template <typename Integer>
void AppendInteger(TextWriter& out, Integer value, int base) {
    char* to = out.Reserve(kLongestInteger);
    out.Commit(
        static_cast<std::size_t>(std::to_chars(to, to + kLongestInteger, value, base).ptr - to));
}

}  // namespace

void TextWriter::Grow(std::size_t count) {
    std::size_t capacity = m_capacity == 0 ? 256 : m_capacity;
    while (capacity - m_size < count) capacity *= 2;
    char* data = static_cast<char*>(std::malloc(capacity));
    if (data == nullptr) throw std::bad_alloc();
    if (m_size > 0) std::memcpy(data, m_data, m_size);
    // A signal handler may read the content at any moment, so the old buffer goes last.
    char* old = m_data;
    m_data = data;
    m_capacity = capacity;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    std::free(old);
}

void TextWriter::AppendDigits(std::uint64_t value) {
    const auto low = static_cast<std::uint32_t>(value);
    if (low == value) return AppendInteger(*this, low, 10);
    AppendInteger(*this, value, 10);
}
void TextWriter::AppendHex(std::uint64_t value) {
    AppendInteger(*this, value, 16);
}

void TextWriter::AppendUpperHex(std::uint64_t value) {
    const std::size_t start = m_size;
    AppendHex(value);
    for (std::size_t i = start; i < m_size; ++i) {
        if (m_data[i] >= 'a') m_data[i] = static_cast<char>(m_data[i] - 'a' + 'A');
    }
}

void TextWriter::AppendFixed(float value) {
    // Below this a float times a million is exact in a double (24 bits times the 14 of 15625), so
    // that rounding it to an integer rounds the sixth decimal as printf does.
    constexpr float kExact = 1e12F;
    constexpr std::uint64_t kMillion = 1000000;
    if (!(std::fabs(value) < kExact)) {
        if (std::isnan(value)) return Append(std::signbit(value) ? "-nan" : "nan");
        char* to = Reserve(kLongestFloat);
        const auto end = std::to_chars(to, to + kLongestFloat, static_cast<double>(value),
                                       std::chars_format::fixed, 6);
        return Commit(static_cast<std::size_t>(end.ptr - to));
    }
    if (std::signbit(value)) Append('-');
    const auto scaled =
        static_cast<std::uint64_t>(std::llrint(std::fabs(static_cast<double>(value)) * kMillion));
    AppendUnsigned(scaled / kMillion);
    auto decimals = static_cast<std::uint32_t>(scaled % kMillion);
    if (decimals == 0) return Append(".000000");
    char* to = Reserve(7);
    to[0] = '.';
    for (int digit = 6; digit > 0; --digit, decimals /= 10) {
        to[digit] = static_cast<char>('0' + decimals % 10);
    }
    Commit(7);
}

void TextWriter::AppendFormat(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    AppendFormatV(format, arguments);
    va_end(arguments);
}

void TextWriter::AppendFormatV(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    if (length > 0) {
        const auto size = static_cast<std::size_t>(length);
        std::vsnprintf(Reserve(size + 1), size + 1, format, again);
        Commit(size);
    }
    va_end(again);
}

}  // namespace kestrail
