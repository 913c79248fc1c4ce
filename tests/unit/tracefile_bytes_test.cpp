#include <filesystem>
#include <limits>
#include <numeric>

#include "tests/unit/unit_support.h"
#include "tracefile/bytes/typed_reads.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kBlock = 0x1400000;

class TraceBytes : public testing::Test {
protected:
    /// Reads through a block of 64 bytes; with a size, a file that ends in a hole.
    bool Open(const Bytes& content, std::uintmax_t size = 0) {
        m_stream.Memory().Allocate(64);
        m_file = std::make_unique<CTempFile>(content);
        if (size != 0) std::filesystem::resize_file(m_file->Name().c_str(), size);
        return m_stream.Open(m_file->Name(), true);
    }
    /// Bytes 0, 1, 2 ... of a file whose content tells its offset.
    static Bytes Counting(std::size_t size) {
        Bytes content(size);
        std::iota(content.begin(), content.end(), std::uint8_t{0});
        return content;
    }

    std::unique_ptr<CTempFile> m_file;
    IOManager m_stream;
    std::uint8_t m_got[65] = {};
};

TEST_F(TraceBytes, ReadsGoOnAcrossBlocksAndWithinThem) {
    constexpr std::uint32_t kSize = 500000;
    ASSERT_TRUE(Open(Counting(kSize)));
    EXPECT_EQ(m_stream.GetSize(), kSize);
    EXPECT_FALSE(m_stream.Read(m_got, 65, true)) << "more than a block";
    for (const std::uint32_t block : {64U, 200000U, kBlock}) {
        m_stream.Memory().Allocate(block);
        ASSERT_TRUE(m_stream.Open(m_file->Name(), true));
        for (const std::uint32_t piece : {1U, 7U, 64U, 4093U, 20011U, 70001U}) {
            if (piece > block) continue;
            ASSERT_EQ(m_stream.Seek(0, SEEK_SET), 0);
            Bytes got(piece), wanted(piece);
            for (std::uint32_t at = 0; at + piece <= kSize; at += piece) {
                ASSERT_EQ(m_stream.Tell(), at);
                ASSERT_TRUE(m_stream.Read(got.data(), piece, true));
                std::iota(wanted.begin(), wanted.end(), static_cast<std::uint8_t>(at));
                ASSERT_EQ(got, wanted) << piece << " bytes at " << at;
            }
        }
    }
}

TEST_F(TraceBytes, ReadsPastTheEnd) {
    ASSERT_TRUE(Open(Counting(100)));
    EXPECT_EQ(m_stream.Seek(96, SEEK_SET), 96);
    // The block that holds the end has room behind it, where the block before still stands.
    EXPECT_TRUE(m_stream.Read(m_got, 8, true));
    EXPECT_EQ(Bytes(m_got, m_got + 9), Bytes({96, 97, 98, 99, 4, 5, 6, 7, 0}));
    while (m_stream.Tell() < 96 + 64 - 8) ASSERT_TRUE(m_stream.Read(m_got, 8, true));
    // Behind it there is nothing more: no read gets anything, until a seek leads back.
    for (int i = 0; i < 5; ++i) EXPECT_FALSE(m_stream.Read(m_got, 40, true));
    EXPECT_EQ(ReadUInt64(m_stream, 0, true), 0U);
    EXPECT_EQ(m_stream.Seek(10, SEEK_SET), 10);
    EXPECT_EQ(ReadUInt16(m_stream, 0, true), 0x0B0A);
}

TEST_F(TraceBytes, Seeking) {
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
            EXPECT_THROW(m_stream.Seek(row.offset, row.whence), MemoryManagerException);
            continue;
        }
        EXPECT_EQ(m_stream.Seek(row.offset, row.whence), row.target);
        EXPECT_EQ(m_stream.Tell(), row.target);
        EXPECT_EQ(ReadBool(m_stream, 0, true), row.target) << row.offset << ", " << row.whence;
        EXPECT_EQ(m_stream.Seek(static_cast<std::int32_t>(row.target), SEEK_SET), row.target);
    }
}

TEST_F(TraceBytes, TheLargestFileIsReadToItsEnd) {
    constexpr std::int32_t kSize = std::numeric_limits<std::int32_t>::max();
    EXPECT_FALSE(Open({}, std::uintmax_t{1} << 31)) << "offsets beyond 31 bits";
    EXPECT_FALSE(m_stream.Read(m_got, 1, true));
    EXPECT_FALSE(Open({}, (std::uintmax_t{1} << 32) + 100));
    ASSERT_TRUE(Open({}, std::uintmax_t{kSize}));
    EXPECT_EQ(m_stream.Seek(kSize - 4, SEEK_SET), kSize - 4);
    EXPECT_TRUE(m_stream.Read(m_got, 4, true));
    EXPECT_FALSE(m_stream.Read(m_got, 64, true));
    EXPECT_FALSE(m_stream.Read(m_got, 1, true));
    EXPECT_THROW(m_stream.Seek(kSize, SEEK_SET), MemoryManagerException);
    m_stream.Close();
    EXPECT_FALSE(m_stream.Read(m_got, 1, true));
    EXPECT_TRUE(Open({42}));
    EXPECT_EQ(ReadBool(m_stream, 0, true), 42);
}

TEST_F(TraceBytes, WritingReportsOnlySingleBytes) {
    const CTempFile file(Bytes{});
    ASSERT_TRUE(m_stream.Open(file.Name(), false));
    EXPECT_TRUE(m_stream.Write("k", 1));
    EXPECT_FALSE(m_stream.Write("estr", 4)) << "written, though the count of items is not 4";
    EXPECT_EQ(m_stream.Tell(), 5U);
    m_stream.Close();
    EXPECT_EQ(std::filesystem::file_size(file.Name().c_str()), 5U);
    EXPECT_FALSE(m_stream.Open("/no/such/folder", false));
    EXPECT_FALSE(m_stream.Write("k", 1));
}

TEST_F(TraceBytes, ValuesOfAnyWidth) {
    m_stream.Memory().Allocate(kBlock);
    m_file = std::make_unique<CTempFile>(Bytes(300, 0xFF));
    ASSERT_TRUE(m_stream.Open(m_file->Name(), true));
    for (const std::int32_t width : {0, 1, -1, 2, -3, 4, -4, 8, -8, 127, -128}) {
        const auto taken = width == 0 ? 4U : static_cast<std::uint32_t>(std::abs(width));
        const std::uint32_t value = ~0U >> (32 - 8 * std::min(taken, 4U));
        m_stream.Seek(0, SEEK_SET);
        EXPECT_EQ(ReadUInt32(m_stream, width, true), value) << width;
        EXPECT_EQ(m_stream.Tell(), taken) << width;
        // Without an extension of the sign.
        EXPECT_EQ(ReadInt32(m_stream, width, true), static_cast<std::int32_t>(value)) << width;
        EXPECT_EQ(m_stream.Tell(), 2 * taken) << width;
    }
    ASSERT_TRUE(
        Open({0x00, 0x00, 0xC0, 0x3F, 2, 0x78, 0x56, 0x34, 0x12, 9, 9, 9, 9, 0xFE, 0xFD, 0xFC}));
    EXPECT_EQ(ReadFloat(m_stream, 0, true), 1.5F);
    EXPECT_EQ(ReadBool(m_stream, 1, true), 2);
    EXPECT_EQ(ReadUInt32(m_stream, 8, true), 0x12345678U) << "the surplus is the high end";
    EXPECT_EQ(ReadInt8(m_stream, 0, true), -2);
    EXPECT_EQ(ReadUInt16(m_stream, 0, true), 0xFCFD);
    m_stream.Seek(5, SEEK_SET);
    EXPECT_EQ(ReadUInt64(m_stream, 0, true), 0x0909090912345678U);
    m_stream.Seek(5, SEEK_SET);
    EXPECT_EQ(ReadUInt64(m_stream, 4, true), 0x12345678U);
}

TEST(Trace, TypeWidths) {
    const std::int8_t table[] = {4, -8, 0};
    CObjectArena memory;
    const CTrace trace(nullptr, 14, true, table, 2, memory);
    EXPECT_EQ(trace.GetEsTypeSize(1), -8);
    EXPECT_EQ(trace.GetEsTypeSize(2), 0) << "the entry behind the table";
    EXPECT_ANY_THROW(trace.GetEsTypeSize(3));
}

}  // namespace
}  // namespace kestrail
