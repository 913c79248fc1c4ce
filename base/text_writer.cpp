#include "base/text_writer.h"

#include <array>
#include <atomic>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <new>
#include <utility>

namespace kestrail {
namespace {

/// Longer than any float with six decimals.
constexpr std::size_t kLongestFloat = 64;

/// "00" to "99" in a row.
constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

constexpr auto kPowersOfTen = [] {
    std::array<std::uint64_t, 20> powers{};
    std::uint64_t power = 1;
    for (std::uint64_t& entry : powers) entry = std::exchange(power, power * 10);
    return powers;
}();

std::uint32_t CountDigits(std::uint64_t value) {
    // 0 has a digit too.
    value |= 1;
    // The number of bits times the logarithm of 2, which is one short or right.
    const auto least = static_cast<std::uint32_t>(std::bit_width(value)) * 1233 >> 12;
    return least + (value >= kPowersOfTen[least] ? 1 : 0);
}

template <typename Integer>
void PutPairs(char* end, Integer value) {
    for (; value >= 100; value /= 100) {
        end -= 2;
        std::memcpy(end, &kPairs[2 * static_cast<std::size_t>(value % 100)], 2);
    }
    if (value >= 10) {
        std::memcpy(end - 2, &kPairs[2 * static_cast<std::size_t>(value)], 2);
    } else {
        end[-1] = static_cast<char>('0' + value);
    }
}

void AppendNibbles(TextWriter& out, std::uint64_t value, const char* digits) {
    const auto count = static_cast<std::size_t>(std::bit_width(value | 1) + 3) / 4;
    char* const to = out.Reserve(count);
    for (std::size_t i = count; i-- > 0; value >>= 4) to[i] = digits[value & 0xF];
    out.Commit(count);
}

}  // namespace

char* PutUnsigned(char* to, std::uint64_t value) {
    char* const end = to + CountDigits(value);
    const auto low = static_cast<std::uint32_t>(value);
    if (low == value) {
        PutPairs(end, low);
    } else {
        PutPairs(end, value);
    }
    return end;
}

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

void TextWriter::AppendHex(std::uint64_t value) {
    AppendNibbles(*this, value, "0123456789abcdef");
}

void TextWriter::AppendUpperHex(std::uint64_t value) {
    AppendNibbles(*this, value, "0123456789ABCDEF");
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
