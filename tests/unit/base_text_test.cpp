#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "base/kstl_string.h"
#include "base/text_writer.h"

namespace kestrail {
namespace {

void ExpectText(const CKSTLString& text, const std::string& content, std::uint32_t capacity) {
    EXPECT_STREQ(text.c_str(), content.c_str());
    EXPECT_EQ(text.size(), content.size()) << content;
    EXPECT_EQ(text.capacity(), capacity) << content;
}

TEST(KstlString, GrowsToExactlyWhatIsNeeded) {
    const char* null = nullptr;
    for (const CKSTLString& empty :
         {CKSTLString(), CKSTLString(null), CKSTLString(null, 0), CKSTLString(""),
          CKSTLString(CKSTLString("abc"), 5), CKSTLString("abc").substr(3)}) {
        ExpectText(empty, "", 1);
    }
    CKSTLString text("abc");
    ExpectText(text, "abc", 4);
    ExpectText(text.append("de"), "abcde", 6);
    ExpectText(text += 'f', "abcdef", 7);
    // A shorter content reuses the buffer.
    ExpectText(text.assign("xy"), "xy", 7);
    text.reserve(6);
    ExpectText(text, "xy", 7);
    text.reserve(7);
    ExpectText(text, "xy", 8);
    text.resize(9, '-');
    ExpectText(text, "xy-------", 10);
    text.resize(1);
    ExpectText(text, "x", 10);
}

TEST(KstlString, SourcesInsideTheStringItself) {
    CKSTLString text("0123456789");
    EXPECT_EQ(text.append(text.c_str() + 2, 3), "0123456789234");
    EXPECT_EQ(text.append(text), "01234567892340123456789234");
    EXPECT_EQ(text.assign(text.c_str() + 5), "567892340123456789234");
    EXPECT_EQ(text.assign(text), "567892340123456789234");
    EXPECT_EQ(text.append(text, 1, 2), "56789234012345678923467");

    CKSTLString pattern("aXa");
    pattern.Replace(pattern.c_str() + 2, pattern.c_str(), true);
    EXPECT_EQ(pattern, "aXaXaXa");
    CKSTLString moved(std::move(pattern));
    EXPECT_EQ(moved, "aXaXaXa");
    EXPECT_EQ(pattern = "again", "again");
    Format(moved, "<%s>", moved.c_str());
    EXPECT_EQ(moved, "<aXaXaXa>");
}

TEST(KstlString, RangesAreCutToTheContent) {
    constexpr std::uint32_t npos = CKSTLString::npos;
    const CKSTLString text("hello world");
    const struct {
        std::uint32_t start, count;
        const char *taken, *left;
    } rows[] = {{0, 6, "hello ", "world"},  {5, npos, " world", "hello"},
                {4, 3, "o w", "hellorld"},  {8, 100, "rld", "hello wo"},
                {11, 1, "", "hello world"}, {50, npos, "", "hello world"}};
    for (const auto& [start, count, taken, left] : rows) {
        EXPECT_EQ(text.substr(start, count), taken);
        EXPECT_EQ(CKSTLString("<").append(text, start, count), CKSTLString("<") + taken);
        CKSTLString copy(text);
        copy.erase(start, count);
        ExpectText(copy, left, 12);
    }
    EXPECT_EQ(text.substr(6), "world");
}

TEST(KstlString, Searching) {
    constexpr std::uint32_t npos = CKSTLString::npos;
    const CKSTLString text("abcabc");
    EXPECT_EQ(
        (std::vector{text.find("bc"), text.find("bc", 2), text.find(CKSTLString("cb")),
                     text.find("a", 100), text.find_first_of("cb"), text.find_first_not_of("ab"),
                     text.find_last_of("ab"), text.find_last_of("ab", 3),
                     text.find_last_not_of("c"), text.find_last_of("x")}),
        (std::vector{1U, 4U, npos, npos, 1U, 2U, 4U, 3U, 4U, npos}));
    EXPECT_TRUE(text == "abcabc" && "abcabd" != text);
    EXPECT_FALSE(text == static_cast<const char*>(nullptr));
    EXPECT_FALSE(CKSTLString() == static_cast<const char*>(nullptr));
}

TEST(KstlString, ReplacingTrimmingAndCase) {
    const struct {
        const char *text, *pattern, *replacement;
        bool all;
        const char* result;
    } replaced[] = {{"a.b.c", ".", "::", true, "a::b::c"}, {"a.b.c", ".", "::", false, "a::b.c"},
                    {"aaa", "a", "aa", true, "aaaaaa"},    {"aaaa", "aa", "a", true, "aa"},
                    {"abc", "x", "y", true, "abc"},        {"", "", "y", true, ""},
                    {"abc", "", "y", true, "abc"},         {"abc", "abc", "", true, ""}};
    for (const auto& row : replaced) {
        CKSTLString text(row.text);
        text.Replace(row.pattern, row.replacement, row.all);
        EXPECT_STREQ(text.c_str(), row.result);
    }
    CKSTLString text(" \t\r\n Mixed Case \n"), blank(" \t ");
    text.TrimLeft();
    EXPECT_EQ(text, "Mixed Case \n");
    text.TrimRight();
    EXPECT_EQ(text, "Mixed Case");
    text.ToUpper();
    EXPECT_EQ(text, "MIXED CASE");
    text.ToLower();
    EXPECT_EQ(text, "mixed case");
    blank.TrimRight();
    EXPECT_EQ(blank, "");
    EXPECT_EQ("<" + CKSTLString("a") + 'b' + "c" + CKSTLString("d"), "<abcd");
    EXPECT_EQ('<' + CKSTLString(3, '='), "<===");
}

TEST(KstlString, FormatsAtAnyLength) {
    const std::string large(100000, 'k');
    CKSTLString result, buffer("old");
    FormatInto(result, buffer, "%s-%d", large.c_str(), 7);
    EXPECT_EQ(result, (large + "-7").c_str());
    EXPECT_EQ(buffer, result);
    Format(result, "%s", "");
    EXPECT_EQ(result, "");
}

std::string ByPrintf(const char* format, auto value) {
    char text[128];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

TEST(TextWriter, FixedIsWhatPrintfPrints) {
    using Limits = std::numeric_limits<float>;
    std::vector<float> values = {0.0F,          1.0F,  0.1F,  123.456F,   1e11F,
                                 9.9999996e11F, 1e12F, 1e20F, 0.0000005F, 0.00000049F};
    for (const float value : {Limits::max(), Limits::min(), Limits::denorm_min(),
                              Limits::infinity(), Limits::quiet_NaN()}) {
        values.push_back(value);
    }
    // Exact halves of the sixth decimal: odd multiples of 2^-7.
    for (float odd = 1; odd < 2000; odd += 2) values.push_back(std::ldexp(odd, -7));
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    }
    std::uniform_real_distribution<float> usual(-1000.0F, 1000.0F);
    for (int i = 0; i < 50000; ++i) values.push_back(usual(random));
    for (const float value : values) {
        TextWriter writer;
        writer.AppendFixed(value);
        writer.Append(' ');
        writer.AppendFixed(-value);
        const auto wide = static_cast<double>(value);
        ASSERT_EQ(writer.View(), ByPrintf("%f", wide) + ByPrintf(" %f", -wide));
    }
}

TEST(TextWriter, IntegersAreWhatPrintfPrints) {
    std::vector<unsigned long long> values = {0};
    for (unsigned long long power = 1; power < 1ULL << 63; power <<= 1) {
        for (const auto value : {power - 1, power, ~power}) values.push_back(value);
    }
    for (const auto value : values) {
        TextWriter writer;
        // Text in front must not change: letters are made upper-case only in the number.
        writer.Append("0xab");
        writer.AppendUnsigned(value);
        writer.AppendSigned(static_cast<std::int64_t>(value));
        writer.AppendHex(value);
        writer.AppendUpperHex(value);
        ASSERT_EQ(writer.View(), ByPrintf("0xab%llu", value) + ByPrintf("%lld", value) +
                                     ByPrintf("%llx", value) + ByPrintf("%llX", value));
    }
}

TEST(TextWriter, KeepsItsContentWhileItGrows) {
    TextWriter writer;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        writer.Append(static_cast<char>('a' + i % 26));
        writer.AppendFormat("%d|%s", i, "text");
        writer.Append(std::string_view());
        expected += static_cast<char>('a' + i % 26) + std::to_string(i) + "|text";
    }
    const std::string large(100000, 'x');
    writer.AppendFormat("%s", large.c_str());
    EXPECT_EQ(writer.View(), expected + large);
    writer.Truncate(3);
    EXPECT_EQ(writer.View(), "a0|");
    writer.Truncate(10);
    EXPECT_EQ(writer.Size(), 3U);
    writer.Clear();
    EXPECT_EQ(writer.View(), "");
}

}  // namespace
}  // namespace kestrail
