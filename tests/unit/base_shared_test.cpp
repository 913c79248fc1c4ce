#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "base/shared_array.h"
#include "base/shared_vector.h"
#include "state/state_table.h"

namespace kestrail {
namespace {

/// A value that owns memory, so that one released twice or never shows under a sanitizer.
std::string Text(std::uint32_t number) {
    return "a text that is longer than a string holds in itself " + std::to_string(number);
}

TEST(SharedArray, CopiesKeepTheirOwnContent) {
    TSharedArray<std::string> array;
    for (std::uint32_t i = 0; i < 5; ++i) array.Append() = Text(i);
    TSharedArray<std::string> copy = array;
    EXPECT_TRUE(copy.SameAs(array));
    copy.Write(3) = Text(30);
    copy.Append() = Text(5);
    EXPECT_EQ(std::vector<std::string>(array.begin(), array.end()),
              (std::vector<std::string>{Text(0), Text(1), Text(2), Text(3), Text(4)}));
    copy.RemoveLast();
    EXPECT_EQ(copy[3], Text(30));
    while (!copy.Empty()) copy.RemoveLast();
    EXPECT_EQ(array.Size(), 5U);
}

template <typename Vector>
std::vector<std::string> ItemsOf(const Vector& vector) {
    std::vector<std::string> items;
    for (std::uint32_t i = 0; i < vector.Size(); ++i) items.push_back(vector[i]);
    return items;
}

/// Random changes with copies taken in between, in tree heights of 0 to 2: each copy keeps the
/// content of the moment it was taken at.
TEST(SharedVector, CopiesKeepTheirOwnContentAtAnyHeight) {
    constexpr std::uint32_t kRunBits = 1;
    constexpr std::size_t kMost = 150;
    TSharedVector<std::string, kRunBits> vector;
    std::vector<std::string> model;
    std::vector<std::pair<TSharedVector<std::string, kRunBits>, std::vector<std::string>>> copies;
    std::mt19937 random(7);
    bool growing = true;
    for (std::uint32_t step = 0; step < 3000; ++step) {
        if (model.size() == kMost) growing = false;
        if (model.empty()) growing = true;
        const auto choice = random() % 10;
        if (choice == 0) {
            copies.emplace_back(vector, model);
        } else if (choice < 4 && !model.empty()) {
            const auto index = static_cast<std::uint32_t>(random() % model.size());
            vector.Write(index) = model[index] = Text(step);
        } else if (growing) {
            vector.Append() = Text(step);
            model.push_back(Text(step));
        } else {
            vector.RemoveLast();
            model.pop_back();
        }
        ASSERT_EQ(vector.Size(), model.size());
    }
    EXPECT_EQ(ItemsOf(vector), model);
    for (const auto& [copy, content] : copies) EXPECT_EQ(ItemsOf(copy), content);
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

/// Against a map of the same content, with copies, through sizes with and without an index.
TEST(StateTable, FindsEveryKeyAfterAnyChange) {
    using Table = TStateTable<std::string, 1>;
    const auto expectSame = [](const Table& table,
                               const std::map<std::uint32_t, std::string>& model) {
        ASSERT_EQ(static_cast<std::size_t>(table.Count()), model.size());
        for (const auto& [key, value] : model) {
            const std::string* found = table.Find(key);
            ASSERT_NE(found, nullptr) << key;
            EXPECT_EQ(*found, value) << key;
            EXPECT_EQ(table.KeyAt(table.IndexOf(key)), key);
        }
    };
    Table table;
    std::map<std::uint32_t, std::string> model;
    std::vector<std::pair<Table, std::map<std::uint32_t, std::string>>> copies;
    std::mt19937 random(3);
    for (std::uint32_t step = 0; step < 4000; ++step) {
        const auto key = static_cast<std::uint32_t>(random() % 200 * 0x01000193U);
        // Up to some 180 keys, down to some 20, and up again.
        const bool grows = step / 1000 % 2 == 0;
        if ((random() % 8 == 0) == grows) {
            table.Erase(key);
            model.erase(key);
        } else {
            table.GetOrCreate(key) = model[key] = Text(step);
        }
        EXPECT_EQ(table.Find(1), nullptr);
        if (step % 250 == 0) copies.emplace_back(table, model);
    }
    expectSame(table, model);
    for (const auto& [copy, content] : copies) expectSame(copy, content);
}

TEST(StateTable, TheLastEntryTakesTheSlotOfAnErasedOne) {
    TStateTable<std::uint32_t> table;
    for (const std::uint32_t key : {10U, 20U, 30U, 40U}) table.GetOrCreate(key) = key + 1;
    table.Erase(20);
    table.Erase(99);
    ASSERT_EQ(table.Count(), 3);
    EXPECT_EQ(table.KeyAt(1), 40U);
    EXPECT_EQ(*std::as_const(table).ValueAt(1), 41U);
    EXPECT_EQ(std::as_const(table).ValueAt(3), nullptr);
    EXPECT_EQ(table.KeyAt(-1), 0U);
}

}  // namespace
}  // namespace kestrail
