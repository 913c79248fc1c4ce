#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "tracefile/bytes/io_manager.h"
#include "tracefile/bytes/trace.h"
#include "tracefile/bytes/typed_reads.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kBlock = 0x1400000;

class TraceBytes : public testing::Test {
protected:
    void SetUp() override {
        m_path = testing::TempDir() + "kestrail_bytes_" + std::to_string(::getpid());
    }
    void TearDown() override {
        m_stream.Close();
        UseBlock(kBlock);
        MemoryManager::Instance().Close();
        std::filesystem::remove_all(m_path);
    }

    static void UseBlock(std::uint32_t capacity) { MemoryManager::Instance().Allocate(capacity); }

    bool Open(const std::vector<std::uint8_t>& content) {
        std::ofstream(m_path, std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()),
                   static_cast<std::streamsize>(content.size()));
        return m_stream.Open(m_path.c_str(), true);
    }
    bool OpenSparse(std::uintmax_t size) {
        std::ofstream(m_path).close();
        std::filesystem::resize_file(m_path, size);
        return m_stream.Open(m_path.c_str(), true);
    }
    /// Bytes 0, 1, 2 ... of a file whose content tells its offset.
    static std::vector<std::uint8_t> Counting(std::size_t size) {
        std::vector<std::uint8_t> content(size);
        for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<std::uint8_t>(i);
        return content;
    }
    bool ThrowsSeeking(std::int32_t offset, std::int32_t whence) {
        try {
            m_stream.Seek(offset, whence);
        } catch (const MemoryManagerException&) {
            return true;
        }
        return false;
    }

    std::string m_path;
    IOManager m_stream;
};

TEST_F(TraceBytes, ReadsGoOnAcrossBlocks) {
    for (const std::uint32_t piece : {1U, 7U, 16U, 64U}) {
        UseBlock(64);
        ASSERT_TRUE(Open(Counting(256)));
        EXPECT_EQ(m_stream.GetSize(), 256U);
        std::uint8_t got[64];
        for (std::uint32_t at = 0; at + piece <= 256; at += piece) {
            ASSERT_EQ(m_stream.Tell(), at);
            ASSERT_TRUE(m_stream.Read(got, piece, true));
            for (std::uint32_t i = 0; i < piece; ++i) {
                ASSERT_EQ(got[i], static_cast<std::uint8_t>(at + i)) << "pieces of " << piece;
            }
        }
    }
}

TEST_F(TraceBytes, ReadsPastTheEnd) {
    UseBlock(64);
    ASSERT_TRUE(Open(Counting(100)));
    EXPECT_EQ(m_stream.Seek(96, SEEK_SET), 96);
    std::uint8_t got[40] = {};
    // The block that holds the end has room behind it.
    EXPECT_TRUE(m_stream.Read(got, 8, true));
    EXPECT_EQ(got[3], 99);
    EXPECT_EQ(m_stream.Tell(), 104U);
    while (m_stream.Tell() < 96 + 64 - 8) ASSERT_TRUE(m_stream.Read(got, 8, true));
    // Behind it there is nothing more: no read gets anything, until a seek leads back.
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(m_stream.Read(got, 40, true));
        EXPECT_EQ(ReadUInt64(m_stream, 0, true), 0U);
    }
    EXPECT_EQ(m_stream.Seek(10, SEEK_SET), 10);
    EXPECT_EQ(ReadUInt16(m_stream, 0, true), 0x0B0A);
}

TEST_F(TraceBytes, ASingleReadIsNoLargerThanTheBlock) {
    ASSERT_TRUE(OpenSparse(2 * kBlock + 10));
    std::vector<std::uint8_t> got(kBlock + 1);
    EXPECT_TRUE(m_stream.Read(got.data(), kBlock, true));
    EXPECT_FALSE(m_stream.Read(got.data(), kBlock + 1, true));
    EXPECT_EQ(m_stream.Tell(), kBlock);
    EXPECT_TRUE(m_stream.Read(got.data(), kBlock, true));
    EXPECT_EQ(m_stream.Tell(), 2 * kBlock);
}

TEST_F(TraceBytes, Seeking) {
    UseBlock(64);
    ASSERT_TRUE(Open(Counting(200)));
    const struct {
        std::int32_t offset, whence;
        std::int64_t target;  ///< -1: refused
    } seeks[] = {
        {5, SEEK_SET, 5},   {0, SEEK_CUR, 5},    {199, SEEK_SET, 199}, {10, SEEK_SET, 10},
        {64, SEEK_CUR, 74}, {10, SEEK_END, 190}, {0, SEEK_CUR, 190},   {200, SEEK_SET, -1},
        {-1, SEEK_SET, -1}, {-1, SEEK_CUR, -1},  {200, SEEK_END, -1},  {199, SEEK_END, 1},
        {64, SEEK_SET, 64}, {60, 7, 60},         {0, SEEK_SET, 0},
    };
    for (const auto& row : seeks) {
        if (row.target < 0) {
            EXPECT_TRUE(ThrowsSeeking(row.offset, row.whence)) << row.offset << ", " << row.whence;
            continue;
        }
        EXPECT_EQ(m_stream.Seek(row.offset, row.whence), row.target);
        EXPECT_EQ(m_stream.Tell(), row.target);
        EXPECT_EQ(ReadBool(m_stream, 0, true), row.target) << row.offset << ", " << row.whence;
        EXPECT_EQ(m_stream.Seek(static_cast<std::int32_t>(row.target), SEEK_SET), row.target);
    }
}

TEST_F(TraceBytes, FilesThatCannotBeRead) {
    EXPECT_FALSE(m_stream.Open((m_path + "-missing").c_str(), true));
    EXPECT_FALSE(Open({})) << "an empty file";
    std::uint8_t byte = 1;
    EXPECT_FALSE(m_stream.Read(&byte, 1, true));
    EXPECT_FALSE(m_stream.Open(testing::TempDir().c_str(), true)) << "a directory";
    EXPECT_FALSE(m_stream.Read(&byte, 1, true));
    EXPECT_FALSE(m_stream.Open("/dev/null", true));
    EXPECT_FALSE(OpenSparse(std::uintmax_t{1} << 31)) << "offsets beyond 31 bits";
    EXPECT_FALSE(m_stream.Read(&byte, 1, true));
    EXPECT_FALSE(OpenSparse((std::uintmax_t{1} << 32) + 100));
    EXPECT_TRUE(Open({42}));
    EXPECT_EQ(ReadBool(m_stream, 0, true), 42);
}

TEST_F(TraceBytes, TheLargestFileIsReadToItsEnd) {
    constexpr std::int32_t kSize = std::numeric_limits<std::int32_t>::max();
    ASSERT_TRUE(OpenSparse(static_cast<std::uintmax_t>(kSize)));
    EXPECT_EQ(m_stream.Seek(kSize - 4, SEEK_SET), kSize - 4);
    std::vector<std::uint8_t> got(kBlock);
    EXPECT_TRUE(m_stream.Read(got.data(), 4, true));
    EXPECT_TRUE(ThrowsSeeking(8, SEEK_CUR) || m_stream.Tell() > std::uint32_t{kSize});
    EXPECT_FALSE(m_stream.Read(got.data(), kBlock, true));
    EXPECT_FALSE(m_stream.Read(got.data(), 1, true));
    EXPECT_TRUE(ThrowsSeeking(kSize, SEEK_SET));
}

TEST_F(TraceBytes, AfterClosing) {
    ASSERT_TRUE(Open(Counting(100)));
    m_stream.Close();
    std::uint8_t byte = 0;
    EXPECT_FALSE(m_stream.Read(&byte, 1, true));
    EXPECT_EQ(m_stream.Seek(50, SEEK_SET), 50);
    EXPECT_TRUE(ThrowsSeeking(100, SEEK_SET));
    EXPECT_FALSE(m_stream.Read(&byte, 1, true));
    m_stream.Close();
    ASSERT_TRUE(Open({7, 8}));
    EXPECT_EQ(ReadUInt16(m_stream, 0, true), 0x0807);
}

TEST_F(TraceBytes, WritingReportsOnlySingleBytes) {
    ASSERT_TRUE(m_stream.Open(m_path.c_str(), false));
    EXPECT_TRUE(m_stream.Write("k", 1));
    EXPECT_FALSE(m_stream.Write("estr", 4)) << "written, though the count of items is not 4";
    EXPECT_EQ(m_stream.Tell(), 5U);
    m_stream.Close();
    EXPECT_EQ(std::filesystem::file_size(m_path), 5U);
    EXPECT_FALSE(m_stream.Open((m_path + "/no/such/folder").c_str(), false));
    EXPECT_FALSE(m_stream.Write("k", 1));
    ASSERT_TRUE(m_stream.Open(m_path.c_str(), true));
    EXPECT_EQ(ReadUInt32(m_stream, 0, true), 0x7473656BU);
}

TEST_F(TraceBytes, ValuesOfAnyWidth) {
    std::vector<std::uint8_t> content(300, 0xFF);
    ASSERT_TRUE(Open(content));
    const struct {
        std::int32_t width;
        std::uint32_t value, taken;
    } rows[] = {
        {0, 0xFFFFFFFFU, 4},      {1, 0xFFU, 1},
        {-1, 0xFFU, 1},           {2, 0xFFFFU, 2},
        {-3, 0xFFFFFFU, 3},       {4, 0xFFFFFFFFU, 4},
        {-4, 0xFFFFFFFFU, 4},     {8, 0xFFFFFFFFU, 8},
        {-8, 0xFFFFFFFFU, 8},     {127, 0xFFFFFFFFU, 127},
        {-128, 0xFFFFFFFFU, 128},
    };
    for (const auto& row : rows) {
        m_stream.Seek(0, SEEK_SET);
        EXPECT_EQ(ReadUInt32(m_stream, row.width, true), row.value) << row.width;
        EXPECT_EQ(m_stream.Tell(), row.taken) << row.width;
        m_stream.Seek(0, SEEK_SET);
        EXPECT_EQ(ReadInt32(m_stream, row.width, true), static_cast<std::int32_t>(row.value))
            << "no sign extension, width " << row.width;
        EXPECT_EQ(m_stream.Tell(), row.taken) << row.width;
    }
    m_stream.Seek(0, SEEK_SET);
    EXPECT_EQ(ReadInt8(m_stream, 0, true), -1);
    EXPECT_EQ(ReadUInt16(m_stream, 0, true), 0xFFFF);
    EXPECT_EQ(ReadUInt64(m_stream, 0, true), ~std::uint64_t{0});
    EXPECT_EQ(m_stream.Tell(), 11U);
    EXPECT_EQ(ReadUInt64(m_stream, 4, true), 0xFFFFFFFFU);

    ASSERT_TRUE(Open({0x00, 0x00, 0xC0, 0x3F, 0x02, 0x78, 0x56, 0x34, 0x12, 9, 9, 9, 9, 5}));
    EXPECT_EQ(ReadFloat(m_stream, 0, true), 1.5F);
    EXPECT_EQ(ReadBool(m_stream, 1, true), 2);
    EXPECT_EQ(ReadUInt32(m_stream, 8, true), 0x12345678U) << "the surplus is the high end";
    EXPECT_EQ(ReadInt8(m_stream, 1, true), 5);
}

TEST(Trace, TypeWidths) {
    constexpr const char* kUndefined = "Undefined Es Type in record library";
    const auto width = [](const CTrace& trace, std::uint16_t tag) -> std::string {
        try {
            return std::to_string(trace.GetEsTypeSize(tag));
        } catch (const char* text) {
            return text;
        }
    };
    std::vector<std::int8_t> table(28, 4);
    table[1] = -8;
    table[27] = 0;
    const CTrace trace(nullptr, 14, true, table.data(), 27);
    EXPECT_EQ(width(trace, 0), "4");
    EXPECT_EQ(width(trace, 1), "-8");
    EXPECT_EQ(width(trace, 27), "0") << "the entry behind the table";
    EXPECT_EQ(width(trace, 28), kUndefined);
    EXPECT_EQ(width(trace, 0xFFFF), kUndefined);
    const CTrace none(nullptr, 14, true, table.data(), -1);
    EXPECT_EQ(width(none, 0), kUndefined);
}

}  // namespace
}  // namespace kestrail
