#include <gtest/gtest.h>

#include <map>
#include <random>

#include "base/name_table.h"

namespace kestrail {
namespace {

using Table = TNameTable<std::uint32_t, std::uint64_t>;

TEST(NameTable, AgreesWithAMapThroughAnyHistory) {
    std::mt19937 random(3);
    for (const std::uint32_t keys : {5U, 40U, 300U, 4000U}) {
        Table table;
        std::map<std::uint32_t, std::uint64_t> model;
        for (int step = 0; step < 30000; ++step) {
            const std::uint32_t key = static_cast<std::uint32_t>(random()) % keys;
            // The entries come and go, so that the table is now nearly empty, now full.
            if (static_cast<int>(random() % 100) < (step / 5000 % 2 == 0 ? 90 : 30)) {
                table.GetOrCreate(key) = static_cast<std::uint64_t>(step);
                model[key] = static_cast<std::uint64_t>(step);
            } else {
                table.Erase(key);
                model.erase(key);
            }
            const std::uint32_t asked = static_cast<std::uint32_t>(random()) % keys;
            const std::uint64_t* found = table.Find(asked);
            ASSERT_EQ(found != nullptr, model.contains(asked));
            ASSERT_TRUE(found == nullptr || *found == model[asked]);
            ASSERT_EQ(table.Count(), static_cast<std::int32_t>(model.size()));
        }
        for (std::int32_t i = 0; i < table.Count(); ++i) {
            EXPECT_EQ(*table.ValueAt(i), model.at(table.KeyAt(i)));
        }
    }
}

TEST(NameTable, StartsWithTenEntriesAndDoubles) {
    Table table;
    EXPECT_EQ(table.Capacity(), 10);
    std::uint64_t* first = &table.GetOrCreate(1);
    *first = 100;
    for (std::uint32_t key = 2; key <= 10; ++key) table.GetOrCreate(key);
    EXPECT_EQ(table.Capacity(), 10);
    EXPECT_EQ(table.GetOrCreate(11), 0U) << "a new value is the default one";
    EXPECT_EQ(table.Capacity(), 20);
    EXPECT_EQ(table.Find(1), first) << "values stay where they are";
    table.Clear();
    EXPECT_EQ(table.Capacity(), 20);
    EXPECT_EQ(table.Find(1), nullptr);
    EXPECT_EQ(table.ValueAt(0), nullptr);
    EXPECT_EQ(table.KeyAt(-1), 0U);
}

TEST(NameTable, TheLastEntryTakesAnErasedOnesPlace) {
    Table table;
    for (std::uint32_t key = 1; key <= 4; ++key) table.GetOrCreate(key) = key * 10UL;
    table.Erase(2);
    EXPECT_EQ(table.KeyAt(1), 4U);
    EXPECT_EQ(*table.ValueAt(1), 40U);
    EXPECT_EQ(*table.Find(4), 40U);
    table.Erase(3);
    table.Erase(99);
    EXPECT_EQ(table.Count(), 2);
    EXPECT_EQ(table.Find(3), nullptr);
}

TEST(NameTable, CopiesAreIndependent) {
    Table table;
    for (std::uint32_t key = 1; key <= 25; ++key) table.GetOrCreate(key) = key;
    Table copy(table);
    *copy.Find(7) = 700;
    copy.Erase(8);
    copy.GetOrCreate(26) = 26;
    EXPECT_EQ(*table.Find(7), 7U);
    EXPECT_EQ(*table.Find(8), 8U);
    EXPECT_EQ(table.Find(26), nullptr);
    table = copy;
    EXPECT_EQ(*table.Find(7), 700U);
    EXPECT_EQ(table.Count(), 25);
}

}  // namespace
}  // namespace kestrail
