#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "pictures/png.h"

namespace kestrail {
namespace {

/// Pixels from the bottom row on.
SPicture Picture(std::uint32_t width, std::uint32_t height, std::vector<std::uint8_t> pixels) {
    return {width, height, std::move(pixels)};
}

// Red below, blue above a green one.
const SPicture kSmall = Picture(1, 3, {255, 0, 0, 255, 0, 255, 0, 9, 0, 0, 255, 0});

TEST(Pictures, ComparesColorsAlone) {
    SPicture other = kSmall;
    other.pixels[3] = 0;
    EXPECT_TRUE(Compare(kSmall, other).Equal());
    other.pixels[0] = 250;
    other.pixels[6] = 3;
    const SDifference found = Compare(kSmall, other);
    EXPECT_EQ(found.pixels, 2u);
    EXPECT_EQ(found.largest, 5);
    EXPECT_EQ(Compare(kSmall, other, 4).pixels, 1u);
    EXPECT_TRUE(Compare(kSmall, other, 5).Equal());
    EXPECT_EQ(PictureOfDifference(kSmall, other).pixels,
              (std::vector<std::uint8_t>{69, 0, 0, 255, 0, 0, 67, 255, 0, 0, 0, 255}));
    other.width = 3;
    other.height = 1;
    EXPECT_FALSE(Compare(kSmall, other).Equal());
}

TEST(Pictures, ChecksumsRowsFromTheTop) {
    // zlib.crc32(bytes([0, 0, 255, 0, 255, 0, 255, 0, 0]))
    EXPECT_EQ(ChecksumOf(kSmall), 0x00C3ADFFu);
}

TEST(Pictures, FitsIntoASizeInProportion) {
    const SPicture large = Picture(2, 2, {0, 0, 0, 0, 100, 0, 0, 0, 0, 200, 0, 0, 100, 0, 0, 0});
    EXPECT_EQ(FitInto(large, 1, 7).pixels, (std::vector<std::uint8_t>{50, 50, 0, 0}));
    const SPicture tall = FitInto(kSmall, 100, 6);
    EXPECT_EQ(tall.width, 2u);
    EXPECT_EQ(tall.height, 6u);
    EXPECT_TRUE(Compare(FitInto(tall, 1, 3), kSmall).Equal());
    EXPECT_EQ(FitInto(Picture(1, 3, kSmall.pixels), 2, 2).pixels,
              (std::vector<std::uint8_t>{170, 85, 0, 173, 0, 85, 170, 3}));
}

TEST(Pictures, WritesAndReadsPng) {
    char folder[] = "/tmp/kestrail-png-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string path = std::string(folder) + "/a.png";
    ASSERT_EQ(WritePng(kSmall, path), "");
    SPicture read;
    ASSERT_EQ(ReadPng(path, read), "");
    EXPECT_TRUE(Compare(read, kSmall).Equal());
    std::filesystem::resize_file(path, 50);
    EXPECT_NE(ReadPng(path, read), "");
    EXPECT_TRUE(read.pixels.empty());
    std::ofstream(path) << "no picture";
    EXPECT_NE(ReadPng(path, read), "");
    EXPECT_EQ(WritePng(kSmall, path + "/b.png"), "Not a directory");
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace kestrail
