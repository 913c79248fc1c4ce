#include "base/kstl_string.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace kestrail {
namespace {

constexpr const char* kBlanks = " \t\n\r";

char* Checked(void* allocated) {
    if (allocated == nullptr) throw std::bad_alloc();
    return static_cast<char*>(allocated);
}

std::uint32_t Measure(const char* text, std::uint32_t length) {
    if (length != CKSTLString::npos) return text != nullptr ? length : 0;
    return text != nullptr ? static_cast<std::uint32_t>(std::strlen(text)) : 0;
}

std::uint32_t Position(std::size_t found) {
    return found == std::string_view::npos ? CKSTLString::npos : static_cast<std::uint32_t>(found);
}

std::size_t From(std::uint32_t start) {
    return start == CKSTLString::npos ? std::string_view::npos : start;
}

/// What printf would print, in a buffer of its own.
std::unique_ptr<char[]> Printed(const char* format, std::va_list arguments, std::uint32_t& length) {
    std::va_list again;
    va_copy(again, arguments);
    const int measured = std::vsnprintf(nullptr, 0, format, arguments);
    length = measured > 0 ? static_cast<std::uint32_t>(measured) : 0;
    auto buffer = std::make_unique<char[]>(std::size_t{length} + 1);
    std::vsnprintf(buffer.get(), std::size_t{length} + 1, format, again);
    va_end(again);
    return buffer;
}

}  // namespace

CKSTLString::CKSTLString() : m_pString(Checked(std::calloc(1, 1))), m_Size(0), m_Capacity(1) {}

CKSTLString::CKSTLString(const char* text, std::uint32_t length) : CKSTLString() {
    assign(text, length);
}

CKSTLString::CKSTLString(const CKSTLString& other) : CKSTLString() {
    assign(other);
}

CKSTLString::CKSTLString(CKSTLString&& other) noexcept : CKSTLString() {
    *this = std::move(other);
}

CKSTLString::CKSTLString(const CKSTLString& other, std::uint32_t start, std::uint32_t count)
    : CKSTLString() {
    append(other, start, count);
}

CKSTLString::CKSTLString(std::uint32_t count, char fill) : CKSTLString() {
    assign(count, fill);
}

CKSTLString::~CKSTLString() {
    std::free(m_pString);
}

CKSTLString& CKSTLString::operator=(const CKSTLString& other) {
    if (this != &other) assign(other);
    return *this;
}

CKSTLString& CKSTLString::operator=(CKSTLString&& other) noexcept {
    std::swap(m_pString, other.m_pString);
    std::swap(m_Size, other.m_Size);
    std::swap(m_Capacity, other.m_Capacity);
    return *this;
}

CKSTLString& CKSTLString::operator=(const char* text) {
    assign(text);
    return *this;
}

CKSTLString& CKSTLString::assign(const char* text, std::uint32_t length) {
    const std::uint32_t count = Measure(text, length);
    if (m_Capacity > count) {
        // The source may lie inside this string.
        if (count > 0) std::memmove(m_pString, text, count);
    } else {
        char* fresh = Checked(std::malloc(std::size_t{count} + 1));
        std::memcpy(fresh, text, count);
        std::free(m_pString);
        m_pString = fresh;
        m_Capacity = count + 1;
    }
    m_Size = count;
    m_pString[m_Size] = '\0';
    return *this;
}

CKSTLString& CKSTLString::assign(const CKSTLString& other) {
    return assign(other.m_pString, other.m_Size);
}

CKSTLString& CKSTLString::assign(std::uint32_t count, char fill) {
    resize(0);
    return append(count, fill);
}

CKSTLString& CKSTLString::append(const char* text, std::uint32_t length) {
    const std::uint32_t count = Measure(text, length);
    if (count == 0) return *this;
    const std::size_t needed = std::size_t{m_Size} + count + 1;
    if (needed > m_Capacity) {
        // The source may lie inside the old buffer, so that goes last.
        if (needed > npos) throw std::bad_alloc();
        char* fresh = Checked(std::malloc(needed));
        std::memcpy(fresh, m_pString, m_Size);
        std::memcpy(fresh + m_Size, text, count);
        std::free(m_pString);
        m_pString = fresh;
        m_Capacity = static_cast<std::uint32_t>(needed);
    } else {
        std::memmove(m_pString + m_Size, text, count);
    }
    m_Size += count;
    m_pString[m_Size] = '\0';
    return *this;
}

CKSTLString& CKSTLString::append(const CKSTLString& other) {
    return append(other.m_pString, other.m_Size);
}

CKSTLString& CKSTLString::append(const CKSTLString& other, std::uint32_t start,
                                 std::uint32_t count) {
    if (start >= other.m_Size) return *this;
    return append(other.m_pString + start, std::min(count, other.m_Size - start));
}

CKSTLString& CKSTLString::append(std::uint32_t count, char fill) {
    GrowTo(std::size_t{m_Size} + count + 1);
    std::memset(m_pString + m_Size, fill, count);
    m_Size += count;
    m_pString[m_Size] = '\0';
    return *this;
}

void CKSTLString::GrowTo(std::size_t capacity) {
    if (capacity <= m_Capacity) return;
    if (capacity > npos) throw std::bad_alloc();
    m_pString = Checked(std::realloc(m_pString, capacity));
    m_Capacity = static_cast<std::uint32_t>(capacity);
}

void CKSTLString::reserve(std::uint32_t count) {
    if (m_Capacity <= count) GrowTo(std::size_t{count} + 1);
}

void CKSTLString::resize(std::uint32_t count, char fill) {
    if (count > m_Size) {
        append(count - m_Size, fill);
        return;
    }
    m_Size = count;
    m_pString[m_Size] = '\0';
}

void CKSTLString::erase(std::uint32_t start, std::uint32_t count) {
    if (start >= m_Size) return;
    if (count >= m_Size - start) return resize(start);
    std::memmove(m_pString + start, m_pString + start + count, m_Size - start - count);
    resize(m_Size - count);
}

CKSTLString CKSTLString::substr(std::uint32_t start, std::uint32_t count) const {
    return CKSTLString(*this, start, count);
}

std::uint32_t CKSTLString::find(const char* text, std::uint32_t start) const {
    return text != nullptr ? Position(view().find(text, start)) : npos;
}
std::uint32_t CKSTLString::find(const CKSTLString& text, std::uint32_t start) const {
    return Position(view().find(text.view(), start));
}
std::uint32_t CKSTLString::find_first_of(const char* set, std::uint32_t start) const {
    return Position(view().find_first_of(set, start));
}
std::uint32_t CKSTLString::find_first_not_of(const char* set, std::uint32_t start) const {
    return Position(view().find_first_not_of(set, start));
}
std::uint32_t CKSTLString::find_last_of(const char* set, std::uint32_t start) const {
    return Position(view().find_last_of(set, From(start)));
}
std::uint32_t CKSTLString::find_last_not_of(const char* set, std::uint32_t start) const {
    return Position(view().find_last_not_of(set, From(start)));
}

bool CKSTLString::operator==(const char* text) const {
    return text != nullptr && view() == text;
}

void CKSTLString::TrimLeft() {
    const std::uint32_t first = find_first_not_of(kBlanks);
    erase(0, first == npos ? m_Size : first);
}

void CKSTLString::TrimRight() {
    const std::uint32_t last = find_last_not_of(kBlanks);
    resize(last == npos ? 0 : last + 1);
}

void CKSTLString::Replace(const char* pattern, const char* replacement, bool all) {
    const std::string_view wanted(pattern);
    if (m_Size == 0 || wanted.empty()) return;
    CKSTLString result;
    std::uint32_t from = 0;
    for (std::uint32_t at = find(pattern); at != npos; at = find(pattern, from)) {
        result.append(*this, from, at - from);
        result.append(replacement);
        from = at + static_cast<std::uint32_t>(wanted.size());
        if (!all) break;
    }
    result.append(*this, from, npos);
    *this = std::move(result);
}

void CKSTLString::ToLower() {
    for (std::uint32_t i = 0; i < m_Size; ++i) {
        m_pString[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(m_pString[i])));
    }
}

void CKSTLString::ToUpper() {
    for (std::uint32_t i = 0; i < m_Size; ++i) {
        m_pString[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(m_pString[i])));
    }
}

CKSTLString operator+(const CKSTLString& left, const CKSTLString& right) {
    return CKSTLString(left).append(right);
}
CKSTLString operator+(const CKSTLString& left, const char* right) {
    return CKSTLString(left).append(right);
}
CKSTLString operator+(const char* left, const CKSTLString& right) {
    return CKSTLString(left).append(right);
}
CKSTLString operator+(const CKSTLString& left, char right) {
    return CKSTLString(left).append(1, right);
}
CKSTLString operator+(char left, const CKSTLString& right) {
    return CKSTLString(1, left).append(right);
}

void Format(CKSTLString& target, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::uint32_t length = 0;
    const auto text = Printed(format, arguments, length);
    va_end(arguments);
    target.assign(text.get(), length);
}

void FormatInto(CKSTLString& result, CKSTLString& buffer, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::uint32_t length = 0;
    const auto text = Printed(format, arguments, length);
    va_end(arguments);
    result.assign(text.get(), length);
    buffer.assign(text.get(), length);
}

}  // namespace kestrail
