#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/text_writer.h"

namespace kestrail {
namespace {

std::string Printed(const char* format, auto value) {
    char text[128];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

/// Empty when the writer agrees with printf, else both texts.
std::string FixedDifference(float value) {
    TextWriter writer;
    writer.AppendFixed(value);
    const std::string expected = Printed("%f", static_cast<double>(value));
    if (writer.View() == expected) return {};
    return std::string(writer.View()) + " for " + expected;
}

TEST(TextWriter, FixedIsWhatPrintfPrints) {
    std::vector<float> values = {0.0F,
                                 1.0F,
                                 0.1F,
                                 123.456F,
                                 1e11F,
                                 9.9999996e11F,
                                 1e12F,
                                 1e20F,
                                 0.0000005F,
                                 0.00000049F,
                                 std::numeric_limits<float>::max(),
                                 std::numeric_limits<float>::min(),
                                 std::numeric_limits<float>::denorm_min(),
                                 std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN()};
    // Exact halves of the sixth decimal: odd multiples of 2^-7.
    for (int odd = 1; odd < 2000; odd += 2)
        values.push_back(std::ldexp(static_cast<float>(odd), -7));
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    }
    std::uniform_real_distribution<float> usual(-1000.0F, 1000.0F);
    for (int i = 0; i < 50000; ++i) values.push_back(usual(random));
    for (const float value : values) {
        ASSERT_EQ(FixedDifference(value), "");
        ASSERT_EQ(FixedDifference(-value), "");
    }
}

TEST(TextWriter, IntegersAreWhatPrintfPrints) {
    std::vector<std::uint64_t> values = {0};
    for (std::uint64_t power = 1; power < std::uint64_t{1} << 63; power <<= 1) {
        for (const std::uint64_t value : {power - 1, power, ~power}) values.push_back(value);
    }
    for (const std::uint64_t value : values) {
        TextWriter writer;
        // Text in front must not change: letters are made upper-case only in the number.
        writer.Append("0xab");
        writer.AppendUnsigned(value);
        writer.AppendSigned(static_cast<std::int64_t>(value));
        writer.AppendHex(value);
        writer.AppendUpperHex(value);
        const auto wide = static_cast<unsigned long long>(value);
        const std::string expected = "0xab" + Printed("%llu", wide) +
                                     Printed("%lld", static_cast<long long>(value)) +
                                     Printed("%llx", wide) + Printed("%llX", wide);
        ASSERT_EQ(writer.View(), expected);
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
    expected += large;
    EXPECT_EQ(writer.View(), expected);

    writer.Truncate(3);
    EXPECT_EQ(writer.View(), expected.substr(0, 3));
    writer.Truncate(10);
    EXPECT_EQ(writer.Size(), 3U);
    writer.Clear();
    EXPECT_EQ(writer.View(), "");
}

}  // namespace
}  // namespace kestrail
