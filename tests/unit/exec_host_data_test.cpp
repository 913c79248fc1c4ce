#include <GLES/gl.h>
#include <GLES/glext.h>
#include <GLES2/gl2ext.h>
#include <GLES3/gl3.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "exec/client_memory.h"
#include "exec/draw_indices.h"
#include "exec/host_data.h"
#include "exec/viewport_correction.h"
#include "tests/unit/unit_support.h"

namespace kestrail {
namespace {

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

struct SPixel {
    std::uint32_t format, type;
    std::int64_t bytes;
};

constexpr SPixel kPixels[] = {{GL_RGBA, GL_UNSIGNED_BYTE, 4},
                              {GL_RGB, GL_UNSIGNED_BYTE, 3},
                              {GL_RGB, GL_UNSIGNED_SHORT_5_6_5, 2},
                              {GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, 2},
                              {GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1, 2},
                              {GL_ALPHA, GL_UNSIGNED_BYTE, 1},
                              {GL_LUMINANCE, GL_UNSIGNED_BYTE, 1},
                              {GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, 2},
                              {GL_RED, GL_HALF_FLOAT, 2},
                              {GL_RG_INTEGER, GL_SHORT, 4},
                              {GL_RGB, GL_FLOAT, 12},
                              {GL_RGBA, GL_HALF_FLOAT_OES, 8},
                              {GL_RGBA_INTEGER, GL_UNSIGNED_INT, 16},
                              {GL_BGRA_EXT, GL_UNSIGNED_BYTE, 4},
                              {GL_SRGB_EXT, GL_UNSIGNED_BYTE, 3},
                              {GL_SLUMINANCE_ALPHA_NV, GL_UNSIGNED_BYTE, 2},
                              {GL_RGB, GL_UNSIGNED_INT_10F_11F_11F_REV, 4},
                              {GL_RGB, GL_UNSIGNED_INT_5_9_9_9_REV, 4},
                              {GL_RGBA, GL_UNSIGNED_INT_2_10_10_10_REV, 4},
                              {GL_DEPTH_COMPONENT, GL_UNSIGNED_SHORT, 2},
                              {GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4},
                              {GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8, 4},
                              {GL_DEPTH_STENCIL, GL_FLOAT_32_UNSIGNED_INT_24_8_REV, 8}};

/// One past the last byte that a host reads which goes from pixel to pixel.
std::int64_t LastByte(std::int64_t pixel, int width, int height, int depth,
                      const SPixelStore& store) {
    const std::int64_t rowPixels = store.unpackRowLength > 0 ? store.unpackRowLength : width;
    const std::int64_t rows = store.unpackImageHeight > 0 ? store.unpackImageHeight : height;
    std::int64_t row = rowPixels * pixel;
    while (row % store.unpackAlignment != 0) ++row;
    std::int64_t last = 0;
    for (int z = 0; z < depth; ++z) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const std::int64_t line =
                    (z + store.unpackSkipImages) * rows + y + store.unpackSkipRows;
                last = std::max(last, line * row + (x + store.unpackSkipPixels + 1) * pixel);
            }
        }
    }
    return last;
}

TEST(ImageBytes, ReachToTheLastPixelThatTheHostReads) {
    std::mt19937 random(7);
    const auto upTo = [&random](int limit) { return static_cast<int>(random() % (limit + 1U)); };
    for (int i = 0; i < 4000; ++i) {
        const SPixel& pixel = kPixels[random() % std::size(kPixels)];
        SPixelStore store;
        store.unpackAlignment = 1 << upTo(3);
        if (i % 2 == 1) {
            store.unpackRowLength = upTo(9);
            store.unpackImageHeight = upTo(9);
            store.unpackSkipPixels = upTo(3);
            store.unpackSkipRows = upTo(3);
            store.unpackSkipImages = upTo(3);
        }
        const int width = upTo(7), height = upTo(5), depth = upTo(3);
        ASSERT_EQ(ImageBytes(pixel.format, pixel.type, width, height, depth, store),
                  LastByte(pixel.bytes, width, height, depth, store))
            << std::hex << pixel.format << ' ' << pixel.type << std::dec << ' ' << width << 'x'
            << height << 'x' << depth << " by " << store.unpackAlignment;
    }
    EXPECT_EQ(ImageBytes(GL_RGBA, GL_UNSIGNED_BYTE, -1, 4, 4, {}), 0);
    EXPECT_EQ(ImageBytes(GL_RGBA, GL_UNSIGNED_BYTE, 4, kMin, 4, {}), 0);
}

TEST(ImageBytes, ImmenseSizesStayImmense) {
    // No captured block has 4 GiB.
    constexpr std::int64_t kLargestBlock = 0xFFFFFFFF;
    SPixelStore all{8, kMax, kMax, kMax, kMax, kMax, 4, 0, 0, 0, 0};
    SPixelStore rows, images, skips;
    rows.unpackRowLength = kMax;
    images.unpackImageHeight = kMax;
    skips.unpackSkipPixels = skips.unpackSkipRows = skips.unpackSkipImages = kMax;
    const struct {
        std::int32_t width, height, depth;
        SPixelStore store;
    } cases[] = {{kMax, kMax, kMax, {}}, {kMax, kMax, kMax, all}, {1, 1, 1, all},
                 {1, 1, 1, skips},       {kMax, 3, 1, {}},        {2, 2, 2, images},
                 {1, 2, 1, rows},        {kMax, 1, 1, {}}};
    for (const auto& c : cases) {
        EXPECT_GT(ImageBytes(GL_RGBA, GL_FLOAT, c.width, c.height, c.depth, c.store),
                  kLargestBlock);
    }
}

TEST(HostData, CapturedBytesOffsetsAndNull) {
    const auto captured = ReadFrom<SDataPtr>(Record().Data(0x40, Bytes(8, 5)));
    const auto nullWithBytes = ReadFrom<SDataPtr>(Record().Data(0, Bytes(8, 5)));
    const auto offset = ReadFrom<SDataPtr>(Record().Data(0x40));
    const auto null = ReadFrom<SDataPtr>(Record().Data(0));
    const struct {
        const SDataPtr& block;
        std::int64_t needed;
        bool nullAllowed, bufferBound;
        const void* pointer;
        bool sound;
    } cases[] = {
        {captured, 8, false, false, captured.GetData(), true},
        {captured, 9, true, false, captured.GetData(), false},
        {captured, std::int64_t{1} << 40, false, true, captured.GetData(), false},
        {captured, -5, false, false, captured.GetData(), true},
        {nullWithBytes, 8, false, false, nullWithBytes.GetData(), true},
        {offset, 900, false, true, AsPointer(0x40), true},
        {offset, 900, true, false, nullptr, true},
        {offset, 900, false, false, nullptr, false},
        {offset, 0, false, false, nullptr, true},
        {null, 4, true, false, nullptr, true},
        {null, 4, false, true, nullptr, true},
        {null, 4, false, false, nullptr, false},
    };
    for (const auto& c : cases) {
        const SHostData data = HostData(c.block, c.needed, c.nullAllowed, c.bufferBound);
        EXPECT_EQ(data.sound, c.sound) << &c - cases;
        EXPECT_EQ(c.sound ? data.pointer : nullptr, c.sound ? c.pointer : nullptr) << &c - cases;
    }
}

TEST(HostData, SizesOfVerticesAndParameters) {
    const struct {
        std::uint32_t type;
        std::int32_t size;
        std::int64_t bytes;
    } vertices[] = {{GL_BYTE, 3, 3},
                    {GL_UNSIGNED_SHORT, 2, 4},
                    {GL_FLOAT, 4, 16},
                    {GL_HALF_FLOAT, 3, 6},
                    {GL_FIXED, 3, 12},
                    {GL_INT_2_10_10_10_REV, 4, 4},
                    {GL_UNSIGNED_INT_2_10_10_10_REV, 4, 4}};
    for (const auto& c : vertices) EXPECT_EQ(VertexBytes(c.type, c.size), c.bytes) << c.type;
    const std::pair<std::uint32_t, std::uint32_t> parameters[] = {
        {GL_TEXTURE_MIN_FILTER, 1},
        {GL_TEXTURE_CROP_RECT_OES, 4},
        {GL_FOG_MODE, 1},
        {GL_FOG_COLOR, 4},
        {GL_LIGHT_MODEL_AMBIENT, 4},
        {GL_LIGHT_MODEL_TWO_SIDE, 1},
        {GL_AMBIENT, 4},
        {GL_POSITION, 4},
        {GL_SPOT_DIRECTION, 3},
        {GL_SPOT_EXPONENT, 1},
        {GL_SHININESS, 1},
        {GL_AMBIENT_AND_DIFFUSE, 4},
        {GL_TEXTURE_ENV_MODE, 1},
        {GL_TEXTURE_ENV_COLOR, 4},
        {GL_POINT_DISTANCE_ATTENUATION, 3},
        {GL_POINT_SIZE_MIN, 1},
        {0, 1}};
    for (const auto& [name, count] : parameters) EXPECT_EQ(ParameterCount(name), count) << name;
    EXPECT_EQ(ClearValueCount(GL_COLOR), 4U);
    EXPECT_EQ(ClearValueCount(GL_DEPTH), 1U);
    EXPECT_EQ(ClearValueCount(GL_STENCIL), 1U);
}

TEST(DrawIndices, AsManyAsTheDrawReads) {
    const auto shorts = ReadFrom<SDataPtr>(Record().Data(0x40, Bytes{1, 0, 0, 1, 9, 0}));
    const struct {
        std::uint32_t type;
        std::int32_t count;
        bool sound;
        std::int64_t vertices;
    } cases[] = {{GL_UNSIGNED_SHORT, 3, true, 257},     {GL_UNSIGNED_SHORT, 2, true, 257},
                 {GL_UNSIGNED_SHORT, 1, true, 2},       {GL_UNSIGNED_SHORT, 4, false, 0},
                 {GL_UNSIGNED_BYTE, 6, true, 10},       {GL_UNSIGNED_BYTE, 7, false, 0},
                 {GL_UNSIGNED_INT, 1, true, 0x1000002}, {GL_UNSIGNED_INT, 2, false, 0},
                 {GL_UNSIGNED_SHORT, 0, true, 0},       {GL_UNSIGNED_SHORT, -3, true, 0},
                 {GL_UNSIGNED_INT, kMax, false, 0},     {GL_UNSIGNED_SHORT, kMin, true, 0}};
    for (const auto& c : cases) {
        const SDrawIndices indices = DrawIndices(false, shorts, 0x77, c.count, c.type);
        EXPECT_EQ(indices.sound, c.sound) << c.type << ' ' << c.count;
        EXPECT_EQ(indices.vertices.count, c.vertices) << c.type << ' ' << c.count;
        EXPECT_EQ(indices.pointer, c.sound ? shorts.GetData() : nullptr);
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
    const SDataPtr none;
    EXPECT_FALSE(DrawIndices(false, none, 0x77, 1, GL_UNSIGNED_BYTE).sound);
}

TEST(ClientMemory, ArraysAreMeasuredToTheLastVertex) {
    CClientMemory memory;
    const auto block = [](std::size_t size) {
        return std::make_unique<SDataPtr>(ReadFrom<SDataPtr>(Record().Data(1, Bytes(size, 9))));
    };
    std::unique_ptr<SDataPtr> array = block(20);
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
    EXPECT_EQ(array, nullptr) << "kept for later draws";
}

TEST(ClientMemory, ZerosStandBehindAnArrayOfUnknownReach) {
    CClientMemory memory;
    constexpr std::int64_t kVertices = 65536;
    const auto bytesAt = [&](std::size_t size, std::uint8_t value) {
        auto array =
            std::make_unique<SDataPtr>(ReadFrom<SDataPtr>(Record().Data(1, Bytes(size, value))));
        const CClientMemory::STaken taken = memory.Take(0, array, {4, 0, kVertices}, false, true);
        EXPECT_TRUE(taken.sound);
        EXPECT_TRUE(memory.Reaches(0, taken.pointer, {4, 0, kVertices}));
        EXPECT_FALSE(memory.Reaches(0, taken.pointer, {4, 0, kVertices + 1}));
        return std::string(static_cast<const char*>(taken.pointer), 4 * kVertices);
    };
    const auto expected = [](std::size_t size, char value) {
        std::string bytes(4 * kVertices, 0);
        std::fill_n(bytes.begin(), size, value);
        return bytes;
    };
    EXPECT_EQ(bytesAt(12, 1), expected(12, 1));
    EXPECT_EQ(bytesAt(30, 2), expected(30, 2));
    EXPECT_EQ(bytesAt(8, 3), expected(8, 3)) << "nothing stays of a longer one";
}

TEST(Viewport, SizeScalesWithTheWindowAndPositionAgainstIt) {
    const struct {
        SViewport recorded;
        std::int32_t live[2], window[2];
        SViewport expected;
    } cases[] = {
        {{8, 9, 10, 20}, {100, 50}, {200, 200}, {16, 36, 5, 5}},
        // Parts of pixels are cut off, towards zero.
        {{7, -7, 3, 3}, {200, 200}, {100, 100}, {3, -3, 6, 6}},
        {{5, 5, 5, 7}, {1, 1}, {3, 3}, {15, 15, 1, 2}},
        // What no integer holds stops at the nearest one.
        {{kMax, kMin, kMax, kMax}, {1, 1}, {100, 100}, {kMax, kMin, 21474836, 21474836}},
        {{1, 1, kMax, kMin}, {1000, 1000}, {1, 1}, {0, 0, kMax, kMin}},
        {{1, -1, 1, 0}, {0, 0}, {0, 0}, {0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        const SViewport fitted =
            CorrectedViewport(c.recorded, c.live[0], c.live[1], c.window[0], c.window[1]);
        EXPECT_EQ(std::vector({fitted.x, fitted.y, fitted.width, fitted.height}),
                  std::vector({c.expected.x, c.expected.y, c.expected.width, c.expected.height}));
    }
}

}  // namespace
}  // namespace kestrail
