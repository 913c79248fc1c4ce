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
