// The string type of the program: file names, messages, value text, progress text. Value semantics,
// a terminating zero byte always behind the content, exact growth.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrail {

class CKSTLString {
public:
    /// As a result: not found. As a count: to the end, or to the terminator.
    static constexpr std::uint32_t npos = 0xFFFFFFFFu;

    CKSTLString();
    // NOLINTNEXTLINE(google-explicit-constructor): literals stand in for strings everywhere.
    CKSTLString(const char* text, std::uint32_t length = npos);
    CKSTLString(const CKSTLString& other);
    CKSTLString(CKSTLString&& other) noexcept;
    CKSTLString(const CKSTLString& other, std::uint32_t start, std::uint32_t count = npos);
    CKSTLString(std::uint32_t count, char fill);
    virtual ~CKSTLString();

    CKSTLString& operator=(const CKSTLString& other);
    CKSTLString& operator=(CKSTLString&& other) noexcept;
    CKSTLString& operator=(const char* text);

    CKSTLString& assign(const char* text, std::uint32_t length = npos);
    CKSTLString& assign(const CKSTLString& other);
    CKSTLString& assign(std::uint32_t count, char fill);

    CKSTLString& append(const char* text, std::uint32_t length = npos);
    CKSTLString& append(const CKSTLString& other);
    CKSTLString& append(const CKSTLString& other, std::uint32_t start, std::uint32_t count);
    CKSTLString& append(std::uint32_t count, char fill);
    CKSTLString& operator+=(const CKSTLString& other) { return append(other); }
    CKSTLString& operator+=(const char* text) { return append(text); }
    CKSTLString& operator+=(char c) { return append(1, c); }

    const char* c_str() const { return m_pString; }
    char* data() { return m_pString; }
    std::uint32_t length() const { return m_Size; }
    std::uint32_t size() const { return m_Size; }
    std::uint32_t capacity() const { return m_Capacity; }
    bool empty() const { return m_Size == 0; }
    std::string_view view() const { return {m_pString, m_Size}; }
    char operator[](std::uint32_t index) const { return m_pString[index]; }
    char& operator[](std::uint32_t index) { return m_pString[index]; }

    /// Makes room for `count` characters when there is less; the content stays.
    void reserve(std::uint32_t count);
    void resize(std::uint32_t count, char fill = '\0');
    void erase(std::uint32_t start, std::uint32_t count = npos);
    void clear() { resize(0); }
    CKSTLString substr(std::uint32_t start, std::uint32_t count = npos) const;

    std::uint32_t find(const char* text, std::uint32_t start = 0) const;
    std::uint32_t find(const CKSTLString& text, std::uint32_t start = 0) const;
    std::uint32_t find_first_of(const char* set, std::uint32_t start = 0) const;
    std::uint32_t find_first_not_of(const char* set, std::uint32_t start = 0) const;
    std::uint32_t find_last_of(const char* set, std::uint32_t start = npos) const;
    std::uint32_t find_last_not_of(const char* set, std::uint32_t start = npos) const;

    /// A null pointer equals no string.
    bool operator==(const char* text) const;
    bool operator==(const CKSTLString& other) const { return view() == other.view(); }

    /// Drop blanks, tabs, line feeds and carriage returns.
    void TrimLeft();
    void TrimRight();
    void Replace(const char* pattern, const char* replacement, bool all);
    void ToLower();
    void ToUpper();

private:
    void GrowTo(std::size_t capacity);

    char* m_pString;
    std::uint32_t m_Size;
    std::uint32_t m_Capacity;
};

CKSTLString operator+(const CKSTLString& left, const CKSTLString& right);
CKSTLString operator+(const CKSTLString& left, const char* right);
CKSTLString operator+(const char* left, const CKSTLString& right);
CKSTLString operator+(const CKSTLString& left, char right);
CKSTLString operator+(char left, const CKSTLString& right);

/// Prints into `target`, at any length.
void Format(CKSTLString& target, const char* format, ...) __attribute__((format(printf, 2, 3)));
/// Prints into both `result` and `buffer`.
void FormatInto(CKSTLString& result, CKSTLString& buffer, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

}  // namespace kestrail
