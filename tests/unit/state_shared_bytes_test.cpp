#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <utility>
#include <vector>

#include "state/shared_bytes.h"

namespace kestrail {
namespace {

using Content = std::vector<std::uint8_t>;

Content ContentOf(const CSharedBytes& bytes) {
    Content room;
    const std::uint8_t* start = bytes.Get(room);
    return Content(start, start + bytes.Size());
}

/// Parts anywhere in contents of several pieces, with copies in between that keep theirs.
TEST(SharedBytes, PartsGoIntoOneCopyOnly) {
    constexpr std::size_t kSize = 30'000;
    Content model(20'000, 5);
    const Content borrowed = model;
    CSharedBytes bytes = CSharedBytes::Borrow(borrowed.data(), borrowed.size());
    model.resize(kSize);
    std::vector<std::pair<CSharedBytes, Content>> copies = {{bytes, borrowed}};
    std::mt19937 random(11);
    std::deque<Content> parts;
    for (std::uint8_t turn = 1; turn < 100; ++turn) {
        SByteRows rows;
        rows.length = 1 + random() % 600;
        rows.stride = rows.length + random() % 300;
        rows.count = 1 + random() % 12;
        const std::size_t span = rows.stride * (rows.count - 1) + rows.length;
        rows.offset = random() % (kSize - span + 1);
        parts.emplace_back(rows.length * rows.count, turn);
        rows.data = parts.back().data();
        rows.dataStride = rows.length;
        ASSERT_TRUE(bytes.Takes(kSize));
        bytes.Put(kSize, rows, rows.data);
        EXPECT_NE(bytes.Identity(), copies.back().first.Identity());
        for (std::size_t row = 0; row < rows.count; ++row) {
            std::fill_n(
                model.begin() + static_cast<std::ptrdiff_t>(rows.offset + row * rows.stride),
                rows.length, turn);
        }
        if (turn % 8 == 1) {
            copies.emplace_back(bytes, model);
            EXPECT_EQ(copies.back().first.Identity(), bytes.Identity());
        }
    }
    EXPECT_EQ(ContentOf(bytes), model);
    for (const auto& [copy, content] : copies) EXPECT_EQ(ContentOf(copy), content);
    EXPECT_TRUE(copies.front().first.Borrowed());
    EXPECT_FALSE(bytes.Borrowed());
}

TEST(SharedBytes, AllThatTakePartsComeToNoMoreThanALimit) {
    const std::uint8_t one = 1;
    const SByteRows rows = {7, 1, 1, 1, &one, 1};
    EXPECT_FALSE(CSharedBytes().Takes(CSharedBytes::kLargest + 1));
    constexpr std::uint64_t kFitting = CSharedBytes::kLargestOfAll / CSharedBytes::kLargest;
    std::vector<CSharedBytes> taking(kFitting);
    for (CSharedBytes& bytes : taking) {
        ASSERT_TRUE(bytes.Takes(CSharedBytes::kLargest));
        bytes.Put(CSharedBytes::kLargest, rows, rows.data);
    }
    EXPECT_FALSE(CSharedBytes().Takes(8));
    EXPECT_TRUE(taking.back().Takes(CSharedBytes::kLargest));
    // A copy counts as one with the original, until both are gone.
    const CSharedBytes copy = taking.back();
    taking.back() = CSharedBytes();
    EXPECT_FALSE(CSharedBytes().Takes(8));
    taking.front() = CSharedBytes();
    EXPECT_TRUE(CSharedBytes().Takes(8));
}

}  // namespace
}  // namespace kestrail
