#include <cstring>
#include <limits>
#include <utility>

#include "calls/pixels/pixel_layout.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kBytes = 5121, k4444 = 32819, k5551 = 32820, k565 = 33635;
constexpr std::uint32_t kRgb = 6407, kRgba = 6408, kBgra = 32993;
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

std::uint8_t* BytesOf(std::uint16_t& pixel) {
    return reinterpret_cast<std::uint8_t*>(&pixel);
}

TEST(PixelSizes, OfTypesPairsRowsAndImages) {
    for (const auto& row : Rows<std::uint32_t>(
             "5120 1; 5121 1; 5122 2; 5123 2; 5124 4; 5125 4; 5126 4; 5132 4; 32819 2; 32820 2;"
             "33635 2; 36193 2; 0 0; 5127 0; 5131 0; 33637 0; 33638 0")) {
        EXPECT_EQ(GetTypeSize(row[0]), row[1]) << row[0];
    }
    for (const auto& row : Rows<std::uint32_t>(R"(
             GL_RGBA 5121 4; GL_RGB 33635 2; GL_RGBA 32820 2; GL_RGBA 32819 2; GL_BGRA_EXT 33638 2;
             GL_BGRA_EXT 33637 2; GL_ALPHA 5121 1; GL_LUMINANCE 5126 4; GL_LUMINANCE_ALPHA 5121 2;
             GL_LUMINANCE_ALPHA 36193 4; GL_RGB 5121 3; GL_RGB 5126 12; GL_BGRA_EXT 5121 4;
             GL_RGBA 36193 8; GL_RGB 32819 6; GL_RGBA 33635 8; GL_RGBA 33638 0; 6402 5123 0;
             GL_RGBA 1 0)")) {
        EXPECT_EQ(GetPixelSize(row[0], row[1]), row[2]) << row[0] << ' ' << row[1];
    }
    // Width, pixel, alignment, border.
    for (const auto& row :
         Rows("3 3 4 0 12; 3 3 0 0 9; 3 3 1 0 9; 4 3 4 0 12; 3 3 8 0 16; 3 3 4 1 16; 0 4 4 0 0;"
              "-1 4 4 0 0; 5 0 4 0 0; 3 3 -4 0 9; 1 1 5 0 5; 2 1 4 -1 0; 1 1 0x7FFFFFFF 0 "
              "0x7FFFFFFF")) {
        const auto pixel = static_cast<std::uint32_t>(row[1]),
                   size = static_cast<std::uint32_t>(row[4]);
        EXPECT_EQ(GetRowSize(row[0], pixel, row[2], row[3]), size)
            << row[0] << ' ' << row[2] << ' ' << row[3];
    }
    const std::pair<std::uint64_t, std::uint64_t> sizes[] = {
        {GetRowSize(kMost, 16, 1, 0), 34359738352U},
        {GetRowSize(kMost, 1, 1, kMost), 6442450941U},
        {GetRowSize(kLeast, 4, 4, kLeast), 0},
        {GetImageSize(kRgb, kBytes, 3, 2, 4, 0), 24},
        {GetImageSize(kRgb, kBytes, 3, 2, 4, 1), 16 * 4},
        {GetImageSize(kRgb, kBytes, 3, -2, 4, 0), 0},
        {GetImageSize(kRgba, 5126, 65536, 65536, 4, 0), 68719476736U},
        {GetImage3DSize(kRgb, kBytes, 3, 2, 5, 4, 0), 120},
        {GetImage3DSize(kRgb, kBytes, 3, 2, 0, 4, 0), 0},
        {GetImage3DSize(kRgba, 5126, kMost, kMost, kMost, 8, kMost), ~std::uint64_t{0}}};
    for (const auto& [size, expected] : sizes) EXPECT_EQ(size, expected);
}

TEST(PixelConversion, OnlyTheseTakePart) {
    std::vector<std::vector<std::uint32_t>> convertible;
    for (std::uint32_t type : {5120U, kBytes, 5122U, 5126U, k4444, k5551, k565, 36193U}) {
        for (std::uint32_t format = 6400; format < 6420; ++format) {
            if (IsConvertible(type, format)) convertible.push_back({type, format});
        }
        EXPECT_FALSE(IsConvertible(type, kBgra));
    }
    EXPECT_EQ(convertible,
              Rows<std::uint32_t>("5121 6406; 5121 6407; 5121 6408; 5121 6409; 5121 6410;"
                                  "32819 6408; 32820 6408; 33635 6407"));
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
    const auto formatOf = [](std::uint32_t type) { return type == k565 ? kRgb : kRgba; };
    for (auto& [from, to, pixel, wanted] : cases) {
        std::uint16_t out = 0xDEAD;
        EXPECT_TRUE(
            ConvertPixel(from, formatOf(from), BytesOf(pixel), to, formatOf(to), BytesOf(out)));
        EXPECT_EQ(out, wanted) << std::hex << pixel << ' ' << from << ' ' << to;
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
    // One pixel in two rows and a border: rows of 6 bytes, padded to 8 and to 12.
    std::vector<std::uint16_t> src(16, 0xF00F), dst(24, 0xEEEE), expected = dst;
    src[9] = 0x0F0F;
    expected[7] = 0xF800;
    expected[13] = 0x07E0;
    const std::uint8_t* from = BytesOf(src[0]);
    EXPECT_TRUE(ConvertImage(1, 2, 1, k4444, kRgba, 4, from, k565, kRgb, 12, BytesOf(dst[0])));
    EXPECT_EQ(dst, expected);
    EXPECT_FALSE(ConvertImage(3, 2, 0, k565, kRgb, 4, from, k565, kRgb, 4, BytesOf(dst[0])));
    EXPECT_TRUE(ConvertImage(0, 2, 0, k565, kRgb, 4, nullptr, k565, kRgb, 4, nullptr));
}

}  // namespace
}  // namespace kestrail
