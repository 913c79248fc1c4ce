#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "base/kstl_string.h"

namespace kestrail {
namespace {

TEST(KstlString, EmptyStringsOwnOneZeroByte) {
    const char* null = nullptr;
    for (const CKSTLString& empty :
         {CKSTLString(), CKSTLString(null), CKSTLString(null, 0), CKSTLString(""),
          CKSTLString(CKSTLString("abc"), 5), CKSTLString("abc").substr(3)}) {
        EXPECT_STREQ(empty.c_str(), "");
        EXPECT_EQ(empty.size(), 0U);
        EXPECT_EQ(empty.capacity(), 1U);
    }
}

TEST(KstlString, GrowsToExactlyWhatIsNeeded) {
    CKSTLString text("abc");
    EXPECT_EQ(text.capacity(), 4U);
    text.append("de");
    EXPECT_EQ(text.capacity(), 6U);
    text += 'f';
    EXPECT_EQ(text.capacity(), 7U);
    text.assign("xy");
    EXPECT_EQ(text.capacity(), 7U) << "a shorter content reuses the buffer";
    text.reserve(6);
    EXPECT_EQ(text.capacity(), 7U);
    text.reserve(7);
    EXPECT_EQ(text.capacity(), 8U);
    EXPECT_EQ(text, "xy");
    text.resize(9, '-');
    EXPECT_EQ(text, "xy-------");
    EXPECT_EQ(text.capacity(), 10U);
    text.resize(1);
    EXPECT_STREQ(text.c_str(), "x");
    EXPECT_EQ(text.capacity(), 10U);
}

TEST(KstlString, SourcesInsideTheStringItself) {
    CKSTLString text("0123456789");
    text.append(text.c_str() + 2, 3);
    EXPECT_EQ(text, "0123456789234");
    text.append(text);
    EXPECT_EQ(text, "01234567892340123456789234");
    text.assign(text.c_str() + 5);
    EXPECT_EQ(text, "567892340123456789234");
    text.assign(text);
    EXPECT_EQ(text, "567892340123456789234");
    text.append(text, 1, 2);
    EXPECT_EQ(text, "56789234012345678923467");

    CKSTLString pattern("aXa");
    pattern.Replace(pattern.c_str() + 2, pattern.c_str(), true);
    EXPECT_EQ(pattern, "aXaXaXa");

    CKSTLString moved(std::move(pattern));
    EXPECT_EQ(moved, "aXaXaXa");
    pattern = "again";
    EXPECT_EQ(pattern, "again");
    Format(moved, "<%s>", moved.c_str());
    EXPECT_EQ(moved, "<aXaXaXa>");
}

TEST(KstlString, RangesAreCutToTheContent) {
    const CKSTLString text("hello world");
    EXPECT_EQ(text.substr(6), "world");
    EXPECT_EQ(text.substr(6, 2), "wo");
    EXPECT_EQ(text.substr(6, 100), "world");
    EXPECT_EQ(text.substr(99, 1), "");

    const struct {
        std::uint32_t start, count;
        const char* left;
    } erased[] = {
        {0, 6, "world"},        {5, CKSTLString::npos, "hello"},
        {4, 3, "hellorld"},     {8, 100, "hello wo"},
        {11, 1, "hello world"}, {50, CKSTLString::npos, "hello world"},
    };
    for (const auto& row : erased) {
        CKSTLString copy(text);
        copy.erase(row.start, row.count);
        EXPECT_STREQ(copy.c_str(), row.left);
        EXPECT_EQ(copy.size(), std::string(row.left).size());
    }
    CKSTLString appended("<");
    appended.append(text, 9, 100);
    appended.append(text, 100, 1);
    EXPECT_EQ(appended, "<ld");
}

TEST(KstlString, Searching) {
    const CKSTLString text("abcabc");
    EXPECT_EQ(text.find("bc"), 1U);
    EXPECT_EQ(text.find("bc", 2), 4U);
    EXPECT_EQ(text.find(CKSTLString("cb")), CKSTLString::npos);
    EXPECT_EQ(text.find("a", 100), CKSTLString::npos);
    EXPECT_EQ(text.find_first_of("cb"), 1U);
    EXPECT_EQ(text.find_first_not_of("ab"), 2U);
    EXPECT_EQ(text.find_last_of("ab"), 4U);
    EXPECT_EQ(text.find_last_of("ab", 3), 3U);
    EXPECT_EQ(text.find_last_not_of("c"), 4U);
    EXPECT_EQ(text.find_last_of("x"), CKSTLString::npos);

    EXPECT_TRUE(text == "abcabc");
    EXPECT_TRUE("abcabd" != text);
    EXPECT_FALSE(text == static_cast<const char*>(nullptr));
    EXPECT_FALSE(CKSTLString() == static_cast<const char*>(nullptr));
}

TEST(KstlString, ReplacingTrimmingAndCase) {
    const struct {
        const char *text, *pattern, *replacement;
        bool all;
        const char* result;
    } replaced[] = {
        {"a.b.c", ".", "::", true, "a::b::c"}, {"a.b.c", ".", "::", false, "a::b.c"},
        {"aaa", "a", "aa", true, "aaaaaa"},    {"aaaa", "aa", "a", true, "aa"},
        {"abc", "x", "y", true, "abc"},        {"", "", "y", true, ""},
        {"abc", "", "y", true, "abc"},         {"abc", "abc", "", true, ""},
    };
    for (const auto& row : replaced) {
        CKSTLString text(row.text);
        text.Replace(row.pattern, row.replacement, row.all);
        EXPECT_STREQ(text.c_str(), row.result);
    }
    CKSTLString text(" \t\r\n Mixed Case \n");
    text.TrimLeft();
    EXPECT_EQ(text, "Mixed Case \n");
    text.TrimRight();
    EXPECT_EQ(text, "Mixed Case");
    text.ToUpper();
    EXPECT_EQ(text, "MIXED CASE");
    text.ToLower();
    EXPECT_EQ(text, "mixed case");
    CKSTLString blank(" \t ");
    blank.TrimRight();
    EXPECT_EQ(blank, "");
    EXPECT_EQ("<" + CKSTLString("a") + 'b' + "c" + CKSTLString("d"), "<abcd");
    EXPECT_EQ('<' + CKSTLString(3, '='), "<===");
}

TEST(KstlString, FormatsAtAnyLength) {
    const std::string large(100000, 'k');
    CKSTLString result;
    CKSTLString buffer("old");
    FormatInto(result, buffer, "%s-%d", large.c_str(), 7);
    EXPECT_EQ(result, (large + "-7").c_str());
    EXPECT_EQ(buffer, result);
    Format(result, "%s", "");
    EXPECT_EQ(result, "");
}

}  // namespace
}  // namespace kestrail
