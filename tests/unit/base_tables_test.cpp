#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "base/name_table.h"
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

}  // namespace
}  // namespace kestrail
