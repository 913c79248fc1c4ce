#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "calls/pixels/pixel_layout.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kBytes = 5121, k4444 = 32819, k5551 = 32820, k565 = 33635;
constexpr std::uint32_t kAlpha = 6406, kRgb = 6407, kRgba = 6408, kLuminance = 6409,
                        kLuminanceAlpha = 6410, kBgra = 32993;
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

TEST(PixelSizes, OfTypesAndPairs) {
    const struct {
        std::uint32_t type, size;
    } types[] = {{5120, 1}, {5121, 1}, {5122, 2},  {5123, 2},  {5124, 4},  {5125, 4},
                 {5126, 4}, {5132, 4}, {32819, 2}, {32820, 2}, {33635, 2}, {36193, 2},
                 {0, 0},    {5127, 0}, {5131, 0},  {33637, 0}, {33638, 0}};
    for (const auto& t : types) EXPECT_EQ(GetTypeSize(t.type), t.size) << t.type;

    const struct {
        std::uint32_t format, type, size;
    } pairs[] = {{kRgba, kBytes, 4},
                 {kRgb, k565, 2},
                 {kRgba, k5551, 2},
                 {kRgba, k4444, 2},
                 {kBgra, 33638, 2},
                 {kBgra, 33637, 2},
                 {kAlpha, kBytes, 1},
                 {kLuminance, 5126, 4},
                 {kLuminanceAlpha, kBytes, 2},
                 {kLuminanceAlpha, 36193, 4},
                 {kRgb, kBytes, 3},
                 {kRgb, 5126, 12},
                 {kBgra, kBytes, 4},
                 {kRgba, 36193, 8},
                 {kRgb, k4444, 6},
                 {kRgba, k565, 8},
                 {kRgba, 33638, 0},
                 {6402, 5123, 0},
                 {kRgba, 1, 0}};
    for (const auto& p : pairs) EXPECT_EQ(GetPixelSize(p.format, p.type), p.size) << p.format;
}

TEST(PixelSizes, OfRowsAndImages) {
    const struct {
        std::int32_t width;
        std::uint32_t pixel;
        std::int32_t alignment, border;
        std::uint64_t size;
    } rows[] = {{3, 3, 4, 0, 12},
                {3, 3, 0, 0, 9},
                {3, 3, 1, 0, 9},
                {4, 3, 4, 0, 12},
                {3, 3, 8, 0, 16},
                {3, 3, 4, 1, 16},
                {0, 4, 4, 0, 0},
                {-1, 4, 4, 0, 0},
                {5, 0, 4, 0, 0},
                {3, 3, -4, 0, 9},
                {1, 1, 5, 0, 5},
                {2, 1, 4, -1, 0},
                {kMost, 16, 1, 0, 34359738352u},
                {kMost, 1, 1, kMost, 6442450941u},
                {1, 1, kMost, 0, 2147483647u},
                {kLeast, 4, 4, kLeast, 0}};
    for (const auto& r : rows) {
        EXPECT_EQ(GetRowSize(r.width, r.pixel, r.alignment, r.border), r.size)
            << r.width << ' ' << r.alignment << ' ' << r.border;
    }
    EXPECT_EQ(GetImageSize(kRgb, kBytes, 3, 2, 4, 0), 24u);
    EXPECT_EQ(GetImageSize(kRgb, kBytes, 3, 2, 4, 1), 16u * 4u);
    EXPECT_EQ(GetImageSize(kRgb, kBytes, 3, -2, 4, 0), 0u);
    EXPECT_EQ(GetImageSize(kRgba, 5126, 65536, 65536, 4, 0), 68719476736u);
    EXPECT_EQ(GetImage3DSize(kRgb, kBytes, 3, 2, 5, 4, 0), 120u);
    EXPECT_EQ(GetImage3DSize(kRgb, kBytes, 3, 2, 0, 4, 0), 0u);
    EXPECT_EQ(GetImage3DSize(kRgba, 5126, kMost, kMost, kMost, 8, kMost),
              std::numeric_limits<std::uint64_t>::max());
}

TEST(PixelConversion, OnlyTheseTakePart) {
    int convertible = 0;
    for (std::uint32_t type : {5120u, 5121u, 5122u, 5126u, 32819u, 32820u, 33635u, 36193u}) {
        for (std::uint32_t format = 6400; format < 6420; ++format) {
            convertible += IsConvertible(type, format) ? 1 : 0;
        }
        EXPECT_FALSE(IsConvertible(type, kBgra));
    }
    EXPECT_EQ(convertible, 5 + 1 + 1 + 1);
    EXPECT_TRUE(IsConvertible(kBytes, kAlpha) && IsConvertible(kBytes, kLuminanceAlpha));
    EXPECT_TRUE(IsConvertible(k4444, kRgba) && IsConvertible(k5551, kRgba));
    EXPECT_TRUE(IsConvertible(k565, kRgb));
}

TEST(PixelConversion, OfOnePixel) {
    struct {
        std::uint32_t from, to;
        std::uint16_t pixel, wanted;
    } cases[] = {{k4444, k5551, 0xF00F, 0xF801}, {k4444, k565, 0xF00F, 0xF800},
                 {k4444, k5551, 0x1230, 0x110C}, {k4444, k565, 0x1230, 0x1106},
                 {k5551, k4444, 0xFFFF, 0xFFFF}, {k5551, k4444, 0xFFFE, 0xFFF0},
                 {k5551, k565, 0xB2CB, 0xB2C5},  {k565, k4444, 0xFFFF, 0xFFFF},
                 {k565, k4444, 0x0000, 0x000F},  {k565, k4444, 0x4431, 0x488F},
                 {k565, k5551, 0x4431, 0x4423}};
    for (const auto& c : cases) {
        std::uint16_t out = 0xDEAD;
        EXPECT_TRUE(ConvertPixel(
            c.from, c.from == k565 ? kRgb : kRgba, reinterpret_cast<const std::uint8_t*>(&c.pixel),
            c.to, c.to == k565 ? kRgb : kRgba, reinterpret_cast<std::uint8_t*>(&out)));
        EXPECT_EQ(out, c.wanted) << std::hex << c.pixel << ' ' << c.from << ' ' << c.to;
    }
    const std::uint8_t bytes[4] = {255, 255, 255, 255};
    std::uint8_t out[4] = {1, 2, 3, 4};
    EXPECT_FALSE(ConvertPixel(kBytes, kRgb, bytes, kBytes, kRgba, out));
    EXPECT_FALSE(ConvertPixel(k565, kRgb, bytes, 5120, kRgba, out));
    EXPECT_FALSE(ConvertPixel(k565, kRgba, bytes, k4444, kRgba, out));
    EXPECT_TRUE(ConvertPixel(k565, kRgb, bytes, kBytes, kRgba, out));
    EXPECT_EQ(std::memcmp(out, "\1\2\3\4", 4), 0);
    EXPECT_TRUE(ConvertPixel(kBytes, kRgba, bytes, k4444, kRgba, out));
    EXPECT_EQ(std::memcmp(out, "\0\0\3\4", 4), 0);
}

TEST(PixelConversion, OfAnImage) {
    // Three pixels a row: 6 bytes, padded to 8 in the source and to 12 in the target.
    const std::vector<std::uint16_t> src = {0xF00F, 0x0F0F, 0x00FF, 7, 0xFFFF, 0x000F, 0xF00F};
    std::vector<std::uint16_t> dst(9, 0xEEEE);
    const auto* from = reinterpret_cast<const std::uint8_t*>(src.data());
    auto* to = reinterpret_cast<std::uint8_t*>(dst.data());
    EXPECT_TRUE(ConvertImage(3, 2, 0, k4444, kRgba, 4, from, k565, kRgb, 12, to));
    EXPECT_EQ(dst, (std::vector<std::uint16_t>{0xF800, 0x07E0, 0x001F, 0xEEEE, 0xEEEE, 0xEEEE,
                                               0xFFFF, 0x0000, 0xF800}));
    // No alignment at all, and a border that stays out.
    std::vector<std::uint16_t> inner(9, 0xEEEE);
    const std::vector<std::uint16_t> whole(9, 0xF00F);
    EXPECT_TRUE(ConvertImage(1, 1, 1, k4444, kRgba, 0,
                             reinterpret_cast<const std::uint8_t*>(whole.data()), k565, kRgb, 0,
                             reinterpret_cast<std::uint8_t*>(inner.data())));
    EXPECT_EQ(inner, (std::vector<std::uint16_t>{0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE, 0xF800, 0xEEEE,
                                                 0xEEEE, 0xEEEE, 0xEEEE}));
    EXPECT_FALSE(ConvertImage(3, 2, 0, k565, kRgb, 4, from, k565, kRgb, 4, to));
    EXPECT_TRUE(ConvertImage(0, 2, 0, k565, kRgb, 4, nullptr, k565, kRgb, 4, nullptr));
}

}  // namespace
}  // namespace kestrail
