#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "base/name_table.h"
#include "base/object_arena.h"
#include "base/shared_array.h"
#include "base/shared_vector.h"
#include "state/state_table.h"

namespace kestrail {
namespace {

/// A value that owns memory, so that one released twice or never shows under a sanitizer.
std::string Text(std::uint32_t number) {
    return "a text that is longer than a string holds in itself " + std::to_string(number);
}

template <typename Table>
class Tables : public testing::Test {};
using BothTables =
    testing::Types<TNameTable<std::uint32_t, std::string>, TStateTable<std::string, 1>>;
TYPED_TEST_SUITE(Tables, BothTables);

/// With copies taken on the way, through sizes with and without an index.
TYPED_TEST(Tables, AgreeWithAMapThroughAnyHistory) {
    using Model = std::map<std::uint32_t, std::string>;
    std::mt19937 random(3);
    for (const auto& [keys, factor] : {std::pair(5U, 1U), std::pair(40U, 1U), std::pair(4000U, 1U),
                                       std::pair(200U, 0x01000193U)}) {
        TypeParam table;
        Model model;
        std::vector<std::pair<TypeParam, Model>> copies;
        const auto number = [&, most = keys, by = factor] {
            return static_cast<std::uint32_t>(random()) % most * by;
        };
        for (std::uint32_t step = 0; step < 24000; ++step) {
            const std::uint32_t key = number(), asked = number();
            // The entries come and go, so that the table is now nearly empty, now full.
            if ((random() % 8 == 0) == (step / 4000 % 2 == 0)) {
                table.Erase(key);
                model.erase(key);
            } else {
                table.GetOrCreate(key) = model[key] = Text(step);
            }
            const std::string* found = std::as_const(table).Find(asked);
            ASSERT_EQ(found != nullptr, model.contains(asked));
            ASSERT_TRUE(found == nullptr || *found == model[asked]);
            ASSERT_EQ(static_cast<std::size_t>(table.Count()), model.size());
            if (step % 3000 == 2999) copies.emplace_back(table, model);
        }
        for (auto& [copy, content] : copies) {
            ASSERT_EQ(static_cast<std::size_t>(copy.Count()), content.size());
            for (const auto& [key, value] : content)
                ASSERT_EQ(*std::as_const(copy).Find(key), value);
            for (std::int32_t i = 0; i < copy.Count(); ++i) {
                ASSERT_EQ(*copy.ValueAt(i), content.at(copy.KeyAt(i)));
            }
        }
    }
}

TYPED_TEST(Tables, TheLastEntryTakesTheSlotOfAnErasedOne) {
    TypeParam table;
    for (const std::uint32_t key : {10U, 20U, 30U, 40U}) table.GetOrCreate(key) = Text(key);
    table.Erase(20);
    table.Erase(99);
    ASSERT_EQ(table.Count(), 3);
    EXPECT_EQ(table.KeyAt(1), 40U);
    EXPECT_EQ(*table.ValueAt(1), Text(40));
    EXPECT_EQ(table.ValueAt(3), nullptr);
    EXPECT_EQ(table.KeyAt(-1), 0U);
}

TEST(NameTable, StartsWithTenEntriesAndDoubles) {
    TNameTable<std::uint32_t, std::uint64_t> table;
    std::uint64_t* first = &table.GetOrCreate(1);
    for (std::uint32_t key = 2; key <= 10; ++key) table.GetOrCreate(key) = key;
    EXPECT_EQ(table.Capacity(), 10);
    EXPECT_EQ(table.GetOrCreate(11), 0U) << "a new value is the default one";
    EXPECT_EQ(table.Capacity(), 20);
    EXPECT_EQ(table.Find(1), first) << "values stay where they are";
    table.Clear();
    EXPECT_EQ(table.Capacity(), 20);
    EXPECT_EQ(table.Find(1), nullptr);
    EXPECT_EQ(table.ValueAt(0), nullptr);
}

template <typename List>
class SharedLists : public testing::Test {};
using BothLists = testing::Types<TSharedArray<std::string>, TSharedVector<std::string, 1>>;
TYPED_TEST_SUITE(SharedLists, BothLists);

/// Random changes with copies taken in between, in tree heights of 0 to 2: each copy keeps the
/// content of the moment it was taken at.
TYPED_TEST(SharedLists, CopiesKeepTheirOwnContent) {
    TypeParam list;
    std::vector<std::string> model;
    std::vector<std::pair<TypeParam, std::vector<std::string>>> copies;
    std::mt19937 random(7);
    bool growing = true;
    for (std::uint32_t step = 0; step < 3000; ++step) {
        const std::string text = Text(step);
        growing = model.empty() || (growing && model.size() < 150);
        const auto choice = random() % 10;
        if (choice == 0) {
            copies.emplace_back(list, model);
        } else if (choice < 4 && !model.empty()) {
            const auto index = static_cast<std::uint32_t>(random() % model.size());
            list.Write(index) = model[index] = text;
        } else if (growing) {
            list.Append() = text;
            model.push_back(text);
        } else {
            list.RemoveLast();
            model.pop_back();
        }
    }
    copies.emplace_back(list, model);
    for (const auto& [copy, content] : copies) {
        ASSERT_EQ(copy.Size(), content.size());
        for (std::uint32_t i = 0; i < copy.Size(); ++i) ASSERT_EQ(copy[i], content[i]);
    }
}

TEST(SharedVector, AChangeLeavesAllOtherRunsShared) {
    TSharedVector<std::uint32_t, 2> vector;
    for (std::uint32_t i = 0; i < 1000; ++i) vector.Append() = i;
    TSharedVector<std::uint32_t, 2> copy = vector;
    copy.Write(500) = 7;
    std::uint32_t apart = 0;
    for (std::uint32_t i = 0; i < 1000; ++i) apart += &vector[i] != &copy[i] ? 1U : 0U;
    EXPECT_EQ(apart, 4U);
}

TEST(ObjectArena, PiecesStandApartAndTheirRoomIsUsedAgain) {
    CObjectArena arena;
    const std::size_t sizes[] = {1, 16, 17, 300, 65536, std::size_t{3} << 20, 40, 0};
    void* first = nullptr;
    for (int turn = 0; turn < 2; ++turn) {
        std::vector<std::pair<unsigned char*, std::size_t>> pieces;
        for (int round = 0; round < 1000; ++round) {
            const std::size_t size = sizes[round < 8 ? round : round % 4];
            pieces.emplace_back(static_cast<unsigned char*>(arena.Take(size)), size);
            EXPECT_EQ(
                reinterpret_cast<std::uintptr_t>(pieces.back().first) % CObjectArena::kAlignment,
                0U);
            std::memset(pieces.back().first, round % 251, size);
        }
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const auto& [bytes, size] = pieces[i];
            if (size == 0) continue;
            EXPECT_EQ(bytes[0], i % 251);
            EXPECT_EQ(bytes[size - 1], i % 251);
        }
        EXPECT_TRUE(turn == 0 || pieces.front().first == first);
        first = pieces.front().first;
        arena.StartAgain();
    }
    // One after the other, as a stream's calls are, all stand in one place.
    for (int call = 0; call < 100; ++call) {
        void* const piece = arena.Take(200);
        EXPECT_EQ(piece, first);
        arena.StartAgain();
    }
}

}  // namespace
}  // namespace kestrail
