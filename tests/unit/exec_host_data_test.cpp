#include <GLES/gl.h>
#include <GLES/glext.h>
#include <GLES2/gl2ext.h>
#include <GLES3/gl3.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <random>

#include "exec/client_memory.h"
#include "exec/draw_indices.h"
#include "exec/host_data.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

/// Formats, types and the bytes of a pixel.
constexpr const char* kPixels = R"(
    GL_RGBA GL_UNSIGNED_BYTE 4; GL_RGB GL_UNSIGNED_BYTE 3; GL_RGB GL_UNSIGNED_SHORT_5_6_5 2;
    GL_RGBA GL_UNSIGNED_SHORT_4_4_4_4 2; GL_RGBA GL_UNSIGNED_SHORT_5_5_5_1 2;
    GL_ALPHA GL_UNSIGNED_BYTE 1; GL_LUMINANCE GL_UNSIGNED_BYTE 1; GL_RED GL_HALF_FLOAT 2;
    GL_LUMINANCE_ALPHA GL_UNSIGNED_BYTE 2; GL_RG_INTEGER GL_SHORT 4; GL_RGB GL_FLOAT 12;
    GL_RGBA GL_HALF_FLOAT_OES 8; GL_RGBA_INTEGER GL_UNSIGNED_INT 16;
    GL_BGRA_EXT GL_UNSIGNED_BYTE 4; GL_SRGB_EXT GL_UNSIGNED_BYTE 3;
    GL_SLUMINANCE_ALPHA_NV GL_UNSIGNED_BYTE 2; GL_RGB GL_UNSIGNED_INT_10F_11F_11F_REV 4;
    GL_RGB GL_UNSIGNED_INT_5_9_9_9_REV 4; GL_RGBA GL_UNSIGNED_INT_2_10_10_10_REV 4;
    GL_DEPTH_COMPONENT GL_UNSIGNED_SHORT 2; GL_DEPTH_COMPONENT GL_UNSIGNED_INT 4;
    GL_DEPTH_STENCIL GL_UNSIGNED_INT_24_8 4; GL_DEPTH_STENCIL GL_FLOAT_32_UNSIGNED_INT_24_8_REV 8)";

/// One past the last byte that a host reads which goes from pixel to pixel.
std::int64_t LastByte(std::int64_t pixel, int width, int height, int depth,
                      const SPixelStore& store) {
    const std::int64_t rowPixels = store.unpackRowLength > 0 ? store.unpackRowLength : width;
    const std::int64_t rows = store.unpackImageHeight > 0 ? store.unpackImageHeight : height;
    std::int64_t row = rowPixels * pixel;
    while (row % store.unpackAlignment != 0) ++row;
    std::int64_t last = 0;
    for (int i = 0; i < width * height * depth; ++i) {
        const int x = i % width, y = i / width % height, z = i / width / height;
        const std::int64_t line = (z + store.unpackSkipImages) * rows + y + store.unpackSkipRows;
        last = std::max(last, line * row + (x + store.unpackSkipPixels + 1) * pixel);
    }
    return last;
}

TEST(ImageBytes, ReachToTheLastPixelThatTheHostReads) {
    std::mt19937 random(7);
    const auto upTo = [&random](int limit) { return static_cast<int>(random() % (limit + 1U)); };
    const auto pixels = Rows<std::uint32_t>(kPixels);
    for (int i = 0; i < 4000; ++i) {
        const auto& pixel = pixels[random() % pixels.size()];
        SPixelStore store{1 << upTo(3)};
        if (i % 2 == 1) store = {1 << upTo(3), upTo(9), upTo(9), upTo(3), upTo(3), upTo(3)};
        const int width = upTo(7), height = upTo(5), depth = upTo(3);
        ASSERT_EQ(ImageBytes(pixel[0], pixel[1], width, height, depth, store),
                  LastByte(pixel[2], width, height, depth, store))
            << pixel[0] << ' ' << pixel[1] << ' ' << width << 'x' << height << 'x' << depth
            << " by " << store.unpackAlignment;
    }
    EXPECT_EQ(ImageBytes(GL_RGBA, GL_UNSIGNED_BYTE, -1, 4, 4, {}), 0);
    EXPECT_EQ(ImageBytes(GL_RGBA, GL_UNSIGNED_BYTE, 4, kMin, 4, {}), 0);
}

TEST(ImageBytes, ImmenseSizesStayImmense) {
    // Width, height, depth, row length, image height, skips; 9 stands for the most.
    for (const auto& row :
         Rows("9 9 9 0 0 0 0 0; 9 9 9 9 9 9 9 9; 1 1 1 9 9 9 9 9; 9 1 1 0 0 0 0 0;"
              "1 1 1 0 0 9 9 9; 9 3 1 0 0 0 0 0; 2 2 2 0 9 0 0 0; 1 2 1 9 0 0 0 0")) {
        const auto at = [&row](std::size_t i) { return row[i] == 9 ? kMax : row[i]; };
        const SPixelStore store{8, at(3), at(4), at(5), at(6), at(7)};
        // No captured block has 4 GiB.
        EXPECT_GT(ImageBytes(GL_RGBA, GL_FLOAT, at(0), at(1), at(2), store), 0xFFFFFFFF);
    }
}

TEST(HostData, CapturedBytesOffsetsAndNull) {
    const auto captured = ReadFrom<SDataPtr>(Record().Data(0x40, Bytes(8, 5)));
    const auto nullWithBytes = ReadFrom<SDataPtr>(Record().Data(0, Bytes(8, 5)));
    const auto offset = ReadFrom<SDataPtr>(Record().Data(0x40));
    const auto null = ReadFrom<SDataPtr>(Record().Data(0));
    const SDataPtr* const blocks[] = {&captured, &nullWithBytes, &offset, &null};
    const void* const pointers[] = {&null, captured.GetData(), nullWithBytes.GetData(),
                                    AsPointer(0x40), nullptr};
    // Block, needed bytes, null allowed, buffer bound; which pointer, 0 where it is not sound.
    for (const auto& row : Rows<std::int64_t>(
             "0 8 0 0 1; 0 9 1 0 0; 0 0x10000000000 0 1 0; 0 -5 0 0 1; 1 8 0 0 2; 2 900 0 1 3;"
             "2 900 1 0 4; 2 900 0 0 0; 2 0 0 0 4; 3 4 1 0 4; 3 4 0 1 4; 3 4 0 0 0")) {
        const SHostData data = HostData(*blocks[row[0]], row[1], row[2] != 0, row[3] != 0);
        EXPECT_EQ(data.sound ? data.pointer : pointers[0], pointers[row[4]])
            << row[0] << ' ' << row[1];
    }
}

TEST(HostData, SizesOfVerticesAndParameters) {
    for (const auto& row : Rows("GL_BYTE 3 3; GL_UNSIGNED_SHORT 2 4; GL_FLOAT 4 16; GL_FIXED 3 12;"
                                "GL_HALF_FLOAT 3 6; GL_INT_2_10_10_10_REV 4 4;"
                                "GL_UNSIGNED_INT_2_10_10_10_REV 4 4")) {
        EXPECT_EQ(VertexBytes(static_cast<std::uint32_t>(row[0]), row[1]), row[2]) << row[0];
    }
    for (const auto& row : Rows<std::uint32_t>(R"(
             GL_TEXTURE_MIN_FILTER 1; 0x8B9D 4; GL_FOG_MODE 1; GL_FOG_COLOR 4;
             GL_LIGHT_MODEL_AMBIENT 4; GL_LIGHT_MODEL_TWO_SIDE 1; GL_AMBIENT 4; GL_POSITION 4;
             GL_SPOT_DIRECTION 3; GL_SPOT_EXPONENT 1; GL_SHININESS 1; GL_AMBIENT_AND_DIFFUSE 4;
             GL_TEXTURE_ENV_MODE 1; GL_TEXTURE_ENV_COLOR 4; GL_POINT_DISTANCE_ATTENUATION 3;
             GL_POINT_SIZE_MIN 1; 0 1)")) {
        EXPECT_EQ(ParameterCount(row[0]), row[1]) << row[0];
    }
    for (const auto& row : Rows<std::uint32_t>("GL_COLOR 4; GL_DEPTH 1; GL_STENCIL 1")) {
        EXPECT_EQ(ClearValueCount(row[0]), row[1]) << row[0];
    }
}

TEST(DrawIndices, AsManyAsTheDrawReads) {
    const auto shorts = ReadFrom<SDataPtr>(Record().Data(0x40, Bytes{1, 0, 0, 1, 9, 0}));
    // Type, count, vertices; less than none where the captured ones are too few.
    for (const auto& row : Rows<std::int64_t>(R"(
             GL_UNSIGNED_SHORT 3 257; GL_UNSIGNED_SHORT 2 257; GL_UNSIGNED_SHORT 1 2;
             GL_UNSIGNED_SHORT 4 -1; GL_UNSIGNED_SHORT 0 0; GL_UNSIGNED_SHORT -3 0;
             GL_UNSIGNED_SHORT -0x80000000 0; GL_UNSIGNED_BYTE 6 10; GL_UNSIGNED_BYTE 7 -1;
             GL_UNSIGNED_INT 1 0x1000002; GL_UNSIGNED_INT 2 -1; GL_UNSIGNED_INT 0x7FFFFFFF -1)")) {
        const SDrawIndices indices =
            DrawIndices(false, shorts, 0x77, static_cast<std::int32_t>(row[1]),
                        static_cast<std::uint32_t>(row[0]));
        EXPECT_EQ(indices.sound, row[2] >= 0) << row[0] << ' ' << row[1];
        EXPECT_EQ(indices.vertices.count, std::max(row[2], std::int64_t{0}))
            << row[0] << ' ' << row[1];
        EXPECT_EQ(indices.pointer, row[2] >= 0 ? shorts.GetData() : nullptr);
    }
    // With a buffer bound only the offset counts.
    const SDrawIndices offset = DrawIndices(true, shorts, 0x77, kMax, GL_UNSIGNED_INT);
    EXPECT_TRUE(offset.sound);
    EXPECT_EQ(offset.pointer, AsPointer(0x77));
    EXPECT_EQ(offset.vertices.count, std::int64_t{1} << 32);
    EXPECT_FALSE(offset.vertices.known);
    EXPECT_EQ(DrawIndices(true, shorts, 0, 0, GL_UNSIGNED_INT).vertices.count, 0);
    // The highest number of a type begins a new primitive, where that is asked for.
    const GLushort strip[] = {4, 0xFFFF, 7, 0xFFFE};
    EXPECT_EQ(VerticesOf(strip, 3, GL_UNSIGNED_SHORT, false), 65536);
    EXPECT_EQ(VerticesOf(strip, 3, GL_UNSIGNED_SHORT, true), 8);
    EXPECT_EQ(VerticesOf(strip, 4, GL_UNSIGNED_SHORT, true), 65535);
    EXPECT_FALSE(DrawIndices(false, {}, 0x77, 1, GL_UNSIGNED_BYTE).sound);
}

std::optional<SDataPtr> Array(std::size_t size, std::uint8_t value) {
    return ReadFrom<SDataPtr>(Record().Data(1, Bytes(size, value)));
}

TEST(ClientMemory, ArraysAreMeasuredToTheLastVertex) {
    CClientMemory memory;
    std::optional<SDataPtr> array = Array(20, 9);
    const CClientMemory::STaken taken = memory.Take(2, array, {4, 0, 5}, true, false);
    EXPECT_TRUE(taken.sound);
    EXPECT_EQ(taken.pointer, array->GetData());
    const struct {
        SArrayReach reach;
        bool reaches;
    } cases[] = {
        {{4, 0, 5}, true},    {{4, 0, 6}, false},   {{4, 8, 3}, true},
        {{4, 9, 3}, false},   {{4, kMax, 1}, true}, {{4, kMax, 2}, false},
        {{4, kMax, 0}, true}, {{4, 0, -1}, true},   {{0, 0, kMax}, true},
        {{21, 0, 1}, false},  {{4, -4, 2}, false},  {{16, kMax, std::int64_t{1} << 62}, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(memory.Reaches(2, taken.pointer, c.reach), c.reaches) << &c - cases;
    }
    // Nothing is known of memory that was not handed out, above all recorded addresses.
    const auto* const elsewhere = reinterpret_cast<const void*>(std::uintptr_t{1} << 40);
    EXPECT_FALSE(memory.Reaches(2, elsewhere, {4, 0, 1}));
    EXPECT_FALSE(memory.Take(2, array, {4, 0, 6}, true, false).sound);
    EXPECT_FALSE(memory.Take(2, array, {4, 0, 6}, true, true).sound);
    EXPECT_FALSE(array) << "kept for later draws";
}

TEST(ClientMemory, ZerosStandBehindAnArrayOfUnknownReach) {
    CClientMemory memory;
    constexpr std::int64_t kVertices = 65536;
    // Nothing stays of a longer one.
    for (const auto& [size, value] :
         {std::pair(12U, '\1'), std::pair(30U, '\2'), std::pair(8U, '\3')}) {
        auto array = Array(size, static_cast<std::uint8_t>(value));
        const CClientMemory::STaken taken = memory.Take(0, array, {4, 0, kVertices}, false, true);
        EXPECT_TRUE(taken.sound);
        EXPECT_TRUE(memory.Reaches(0, taken.pointer, {4, 0, kVertices}));
        EXPECT_FALSE(memory.Reaches(0, taken.pointer, {4, 0, kVertices + 1}));
        EXPECT_EQ(std::string(static_cast<const char*>(taken.pointer), 4 * kVertices),
                  std::string(size, value) + std::string(4 * kVertices - size, 0));
    }
}

}  // namespace
}  // namespace kestrail
